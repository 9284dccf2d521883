#!/usr/bin/env python3
"""Writes the manual page or the completion of a shell from the commands that the tool itself knows.

  zerklsc --option-tree | make_help.py man TEMPLATE    scdoc source: the template with the commands at its mark
  zerklsc --option-tree | make_help.py bash|zsh        the completion
  scdoc < SOURCE | make_help.py tidy CHANGELOG         the page without empty paragraphs, of the release's date
"""
import email.utils
import json
import pathlib
import re
import sys
import textwrap
import time

BASH = """\
# bash completion for zerklsc
_zerklsc() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command='' word
    # "--option=value" comes as three words.
    if [[ $current == = ]]; then
        current=''
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case "$command $word" in
        @COMMANDS@) command="$command $word" ;;
        esac
    done
    local files=no words='' options=''
    case $command in
@OPTIONS@
    esac
    if [[ $current == -* ]]; then
        words=$options files=no
    fi
    case "$command $previous" in
@VALUES@
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    if [[ $files != no ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -A "$files" -- "$current")
    fi
}
complete -F _zerklsc zerklsc
"""


def is_positional(option):
    return not option["names"][0].startswith("-")


def words_of(option):
    """The words that an option takes, where it takes words."""
    found = re.search(r"\{(.*)\}", option["value"])
    return found.group(1).split(",") if found else []


def takes_file(option):
    return option["value"] == "FILE"


def takes_directory(option):
    return option["value"] == "DIR"


def walk(command, path=()):
    """Each command with the words that lead to it, from the program itself on."""
    yield path, command
    for sub in command["commands"]:
        yield from walk(sub, (*path, sub["name"]))


def value_name(option):
    """The value as the manual shows it."""
    if words_of(option):
        return "|".join(words_of(option))
    return re.sub("^(U?INT|FLOAT)(:.*)?$", "NUMBER", option["value"])


# The manual page.

def escaped(text):
    return re.sub(r"([\\*_`~^<>\[\]#|])", r"\\\1", text) if text else ""


def wrapped(text, indent=""):
    lines = textwrap.wrap(text, 72, break_long_words=False, break_on_hyphens=False)
    # A dash or a dot at the start of a line is a list to scdoc.
    return "".join(indent + ("\\" if line[0] in "-." else "") + escaped(line) + "\n" for line in lines)


def man_option(option):
    if is_positional(option):
        head = f"_{escaped(option['names'][0])}_"
    else:
        head = ", ".join(f"*{escaped(name)}*" for name in option["names"])
        if value_name(option):
            head += " " + " | ".join(f"_{escaped(word)}_" for word in value_name(option).split("|"))
    notes = ["required"] if option["required"] and not is_positional(option) else []
    if limits := re.search(r"\[(.*) - (.*)\]", option["value"]):
        notes.append(f"{limits[1]} to {limits[2]}")
    if option["default"]:
        notes.append(f"default {option['default']}")
    text = option["description"] + (f" [{', '.join(notes)}]" if notes else "")
    return f"{head}\n" + wrapped(text, "\t")


def man_footer(footer):
    """Paragraphs of text, and indented lines as they are."""
    for kind, lines in grouped(footer.split("\n")):
        if kind == "code":
            yield "```\n" + "\n".join(line.strip() for line in lines) + "\n```\n"
        elif kind == "text":
            yield wrapped(" ".join(lines))


def grouped(lines):
    kinds = ["" if not line.strip() else "code" if line.startswith(" ") else "text" for line in lines]
    start = 0
    for i in range(1, len(lines) + 1):
        if i == len(lines) or kinds[i] != kinds[start]:
            yield kinds[start], lines[start:i]
            start = i


def man_command(path, command):
    positional = [option for option in command["options"] if is_positional(option)]
    usage = " ".join([f"*zerklsc {' '.join(path)}*"]
                     + [f"_{escaped(o['names'][0])}_" + ("..." if o["many"] else "") for o in positional]
                     + [f"*{o['names'][0]}* _{escaped(value_name(o))}_" for o in command["options"]
                        if o["required"] and not is_positional(o)] + ["\\[_OPTION_...\\]"])
    yield f"## zerklsc {' '.join(path)}\n"
    yield usage + "\n"
    yield wrapped(command["description"] + ".")
    for option in positional + [o for o in command["options"] if not is_positional(o)]:
        yield man_option(option)
    yield from man_footer(command["footer"])


def man(tree):
    template = pathlib.Path(sys.argv[2]).read_text(encoding="utf-8")
    program, *commands = walk(tree)
    blocks = [block for path, command in commands if not command["commands"] for block in man_command(path, command)]
    options = [man_option(option) for option in program[1]["options"]]
    return template.replace("@OPTIONS@\n", "\n".join(options)).replace("@COMMANDS@\n", "\n".join(blocks))


def tidy(page):
    """Takes out the empty paragraphs that scdoc leaves before and after headings and lists."""
    released = re.search(r"^ -- .*>  (.*)$", pathlib.Path(sys.argv[2]).read_text(encoding="utf-8"), re.M)[1]
    date = time.strftime("%Y-%m-%d", email.utils.parsedate(released))
    page = re.sub(r'^(\.TH .* )".*"$', rf'\1"{date}"', page, count=1, flags=re.M)
    page = re.sub(r"(\.P\n)+\.RE\n", ".RE\n.P\n", page)
    page = re.sub(r"(\.P\n)+(?=\.P\n|\.S[HS]|\Z)", "", page)
    return re.sub(r"^(\.(?:TH|SH|SS) .*\n)(\.P\n)+", r"\1", page, flags=re.M)


# The completion of bash.

def bash_files(option):
    """What compgen offers for a value."""
    return "file" if takes_file(option) else "directory" if takes_directory(option) else "no"


def bash(tree):
    paths = ['" ' + " ".join(path) + '"' for path, _ in walk(tree) if path]
    options, values = [], []
    for path, command in walk(tree):
        names = [name for option in command["options"] if not is_positional(option) for name in option["names"]]
        words = [sub["name"] for sub in command["commands"]] + ([] if path else ["help"])
        files = any(is_positional(option) and takes_file(option) for option in command["options"])
        prefix = "".join(" " + word for word in path)
        options.append(f'    "{prefix}") options="{" ".join(names)}" words="{" ".join(words)}" files={"file" if files else "no"} ;;')
        for option in command["options"]:
            if not is_positional(option) and option["value"]:
                cases = " | ".join(f'"{prefix} {name}"' for name in option["names"])
                values.append(f'    {cases}) words="{" ".join(words_of(option))}" '
                              f'files={bash_files(option)} ;;')
    return (BASH.replace("@COMMANDS@", " | ".join(paths)).replace("@OPTIONS@", "\n".join(options))
            .replace("@VALUES@", "\n".join(values)))


# The completion of zsh.

def zsh_quoted(text):
    return text.replace("'", "'\\''")


def zsh_text(text):
    """A description inside the brackets of _arguments."""
    return zsh_quoted(re.sub(r"([\\\[\]:])", r"\\\1", text))


def zsh_action(option):
    if words_of(option):
        return f"({' '.join(words_of(option))})"
    return "_files" if takes_file(option) else "_files -/" if takes_directory(option) else " "


def zsh_option(option):
    if is_positional(option):
        return f"'{'*' if option['many'] else ''}:{option['names'][0]}:{zsh_action(option)}'"
    value = f":{zsh_text(value_name(option))}:{zsh_action(option)}" if option["value"] else ""
    names, text = option["names"], f"[{zsh_text(option['description'])}]{value}"
    if len(names) == 1:
        return f"'{'*' if option['many'] else ''}{names[0]}{text}'"
    return f"'({' '.join(names)})'{{{','.join(names)}}}'{text}'"


def zsh_function(path, command):
    lines = [zsh_option(option) for option in command["options"]]
    name = "_".join(("_zerklsc", *path))
    if not command["commands"]:
        return f"{name}() {{\n    _arguments -s {_continued(lines)}\n}}\n"
    subs = "\n".join(f"        '{sub['name']}:{zsh_text(sub['description'])}'" for sub in command["commands"])
    shown = subs if path else subs + "\n        'help:Print the help of a command'"
    lines += ["'1: :->command'", "'*:: :->arguments'"]
    return f"""{name}() {{
    local curcontext=$curcontext state line
    local -A opt_args
    local -a commands=(
{shown}
    )
    _arguments -C {_continued(lines)}
    case $state in
    command) _describe command commands ;;
    arguments) (( $+functions[{name}_$line[1]] )) && {name}_$line[1] ;;
    esac
}}
"""


def _continued(lines):
    return " \\\n        ".join(["", *lines]).lstrip(" ")


def zsh(tree):
    functions = [zsh_function(path, command) for path, command in walk(tree)]
    functions.append("_zerklsc_help() {\n    _arguments '1:command:("
                     + " ".join(sub["name"] for sub in tree["commands"]) + ")'\n}\n")
    return "#compdef zerklsc\n" + "\n".join(functions) + "\n_zerklsc \"$@\"\n"


if sys.argv[1] == "tidy":
    sys.stdout.write(tidy(sys.stdin.read()))
else:
    sys.stdout.write({"man": man, "bash": bash, "zsh": zsh}[sys.argv[1]](json.load(sys.stdin)))
