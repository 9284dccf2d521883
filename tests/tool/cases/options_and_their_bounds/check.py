"""Holds every option of every command against the list below, as the tool lists them, and tries each number at both of its ends.

NAME VALUE [LOWEST - HIGHEST]=DEFAULT, with ! where it must be given and + where it may be given again.
"""
import json
import re
import subprocess

PATTERN, ALGORITHM = "--pattern {RGGB,GRBG,GBRG,BGGR}", "--algorithm {halvane,orvel-otp,orvel,beta,orvel-weights}=orvel"
STEP, ISP, LIMIT = "--step [1 - 255]", "--isp {tvessa2,vessal2}", "--limit NAME=WARN,REFUSE+"
RAW = ["--width [1 - 65534]", "--height [1 - 65534]", "--packing {words,raw10,raw12}", "--stride [1 - 1048576]",
       "--offset [0 - 1073741824]", "--endian {little,big}=little", "--bits [8 - 16]", "--align {left,right}=right", PATTERN,
       "--black-level LEVELS", "--white-level [1 - 65535]"]
GRID = [STEP, "--radius [0 - 90]=8", "--shading [1 - 100]=100", "--max-memory [1 - 1048576]=1024"]
FORCE = [LIMIT, "--force", "--keep-outliers"]
AVERAGE = ["--average {mean,median,clipped-mean}=mean", "--dark FILE+"]
METHOD = [ALGORITHM, *GRID, "--clip-limit [0 - 100]=0.1", *FORCE]
MODE, ERROR, OUTPUT, TABLES = "--mode [0 - 1]=0", "--max-error [0.001 - 1000]", "-o --output FILE!", "--tables FILE"
COMMON = ["--preset FILE", "--json", "-q --quiet"]
COMMANDS = {
    "simulate": [OUTPUT, "--width [2 - 65534]=4208", "--height [2 - 65534]=3120", PATTERN + "=RGGB", "--bits [9 - 16]=10",
                 "--black-level [0 - 65535]=64", "--full-well [0 - 1000000]=6000", "--read-noise [0 - 10000]=3",
                 "--defects [0 - 1000000]=0", "--response [0 - 50]=0", "--seed UINT=1", "--level [0 - 1000]=80",
                 "--corners R,GR,GB,B=34,40,41,45", "--centre X,Y=51.5,48", "--colours R,GR,GB,B=62,100,100,70",
                 "--wave [0 - 50]=0", "--dust [0 - 10000]=0", "--fault NAME[=AMOUNT]+"],
    "check": ["flat FILE!+", *RAW, "--turned FILE", "--reference FILE", ALGORITHM, *GRID, LIMIT],
    "calibrate": ["flat FILE!+", *RAW, *AVERAGE, OUTPUT, "--text FILE", "--relative-to FILE", *METHOD],
    "convert": ["tables FILE!+", "--ct KELVIN", "--size WIDTH,HEIGHT", STEP, OUTPUT,
                "--to {json,rkisp1,rkisp1-polynomial,alsc,android,dng,c,csv,npy,text}", "--grid COLUMNS,ROWS", "--into FILE",
                "--replace", "--raw FILE", *RAW],
    "correct": ["raw FILE!", *RAW, TABLES + "!", OUTPUT, ISP, "--restore-black", "--scale"],
    "compare": ["flat FILE!", *RAW, *GRID, *FORCE],
    "info": ["raw FILE!", *RAW],
    "lot": ["results FILE!+", "--partial FILE", "--golden FILE", "-o --output FILE", "--results FILE+"],
    "measure": ["frame FILE!", *RAW, "--blocks [3 - 1001]=11", "--limit [0 - 100]"],
    "preview": ["raw FILE!", *RAW, OUTPUT, TABLES, ISP, "--corrected FILE", "--corrected-black-level LEVELS"],
    "report": ["flat FILE!", *RAW, TABLES + "!", ISP, LIMIT, OUTPUT],
    "resample": ["tables FILE!", OUTPUT, "--text FILE", STEP, "--crop X,Y,WIDTH,HEIGHT", "--size WIDTH,HEIGHT"],
    "otp": None,
    "otp encode": ["tables FILE!", OUTPUT, MODE, "--container", "--serial SERIAL", "--c-array FILE", ERROR, "--force"],
    "otp decode": ["stream FILE!", OUTPUT, "--like FILE", "--width [2 - 65534]", "--height [2 - 65534]", STEP, PATTERN,
                   "--black-level LEVELS=0"],
    "otp check": ["stream FILE!", TABLES, ERROR],
    "batch": ["manifest FILE!", OUTPUT, "--tables DIR", "--streams DIR", "--no-gains", "--jobs [1 - 1024]", "--shard I/N=1/1",
              *RAW, *AVERAGE, *METHOD, MODE, ERROR, "--max-flatness [0.001 - 1000]"],
}
# Lists of numbers, and how long a list is; the ends that another rule refuses too are told by what is said.
LISTS = [("simulate", "--corners", "1 199", 4), ("simulate", "--centre", "0 100", 2), ("simulate", "--colours", "0 1000", 4),
         ("resample tables.json", "--crop", "0 65534", 4), ("resample tables.json", "--size", "2 65534", 2),
         ("convert tables.json --to alsc --ct 5000", "--grid", "2 256", 2), ("convert tables.json --to alsc", "--ct", "1000 20000", 1),
         ("convert tables.json", "--size", "2 65534", 2)]
# What ends a command before it does any work.
ENDS = {"simulate": "--black-level 1023 --bits 10"}


def zerklsc(words):
    return subprocess.run(["zerklsc", *words.split()], capture_output=True, text=True, check=False)


def text_of(option):
    names, value, default = " ".join(option["names"]), option["value"], option["default"]
    value = value.replace("INT:", "").replace("FLOAT:", "")
    return (names + (" " + value if value else "") + ("=" + default if default else "") + ("!" if option["required"] else "")
            + ("+" if option["many"] else ""))


def compare(tree, name=""):
    told = [text_of(option) for option in tree["options"]]
    listed = ["-h --help", *(COMMANDS[name] or []), *(COMMON if COMMANDS[name] else COMMON[1:])]
    for option in sorted(set(told) ^ set(listed)) or ([] if told == listed else ["the order"]):
        print(f"{name}: {option}")
    assert (tree["description"] != "") and (tree["footer"] != "" or name == "otp"), name
    for command in tree["commands"]:
        compare(command, f"{name} {command['name']}".strip())


def is_refused(words, option, value):
    """By the range of the option, not by another rule."""
    said = zerklsc(f"{words} {option}={value}").stderr
    return re.search(f"{option}: {value} is not (a|[0-9]) (number|list)", said) is not None


def try_ends(words, option, lowest, highest, shown=str):
    whole = "." not in lowest + highest
    step = 1 if whole else 0.0001
    ends = [float(end) if not whole else int(end) for end in (lowest, highest)]
    for value, refused in ((ends[0] - step, True), (ends[0], False), (ends[1], False), (ends[1] + step, True)):
        if is_refused(words, option, shown(value)) != refused:
            print(f"{words} {option}={shown(value)} is {'taken' if refused else 'refused'}")


tree = json.loads(zerklsc("--option-tree").stdout)
assert [command["name"] for command in tree["commands"]] == [name for name in COMMANDS if " " not in name]
COMMANDS[""] = None
tree["options"] = [option for option in tree["options"] if option["names"][0] != "-V"]
compare(tree)
# One empty line stands between the groups of a command's help, and its usage names what must be given.
text = zerklsc("calibrate --help").stdout
groups = [line for before, line in zip(text.split("\n"), text.split("\n")[1:]) if before == "" and line.endswith(":")]
assert groups == ["Positionals:", "Options:", "What the frame does not say, or says wrong:", "Example:"], groups
assert "\n\n\n" not in text and "\nUsage: zerklsc calibrate -o FILE [OPTIONS] flat...\n" in text, text[:300]
tried = set()
for name, options in COMMANDS.items():
    for option in options or ():
        if "[" in option.split()[-3:][0] and option not in tried:
            tried.add(option)
            lowest, highest = option[option.index("[") + 1:option.index("]")].split(" - ")
            stands = " ".join("missing" for other in options if other.split()[0][0] != "-")
            output = "-o out.pgm" if OUTPUT in options else ""
            needed = "--tables missing" if name in ("correct", "report", "otp check") else ""
            words = f"{name} {stands} {output} {needed} {ENDS.get(name, '') if 'bits' not in option and 'black' not in option else ''}"
            try_ends(" ".join(words.split()), option.split()[0], lowest, highest)
print(len(tried), "numbers")
for words, option, ends, length in LISTS:
    name = words.split()[0]
    words += f" -o out.json {ENDS.get(name, '')}"
    lowest, highest = ends.split()
    for place in range(length):
        def shown(value):
            parts = [lowest] * length
            parts[place] = str(value)
            return ",".join(parts)
        try_ends(words, option, lowest, highest, shown)
    # And one number too few, or too many.
    for count in (length - 1, length + 1):
        assert count == 0 or is_refused(words, option, ",".join([lowest] * count)), (option, count)
