#!/bin/sh
# kernel_objects.sh NM OBJDUMP INSTRUCTION_SET FORM OBJECT...: the objects of kernels leave nothing to the linker that it
# could take for code of the base, and their instructions are those of the instruction set: none beyond it and, in the
# form that is shipped, some that the set below lacks.
set -eu
nm=$1 objdump=$2 instruction_set=$3 form=$4
shift 4

# Extended regular expressions for lines of "mnemonic operands": instructions of the set, and of those above it.
neon='\bq[0-9]+\b|^v(ld|st)[1-4]\.|^v[a-z]+\.[iusp](8|16|32|64)\b.*\b[dq][0-9]|\bd(1[6-9]|2[0-9]|3[01])\b'
evex='%zmm|%k[1-7]|%[xy]mm(1[6-9]|2[0-9]|3[01])'
case $("$objdump" -f "$1" | sed -n 's/.*file format //p'):$instruction_set in
elf64-x86-64:base | elf32-i386:base) own='%xmm' beyond='%[yz]mm|^v[a-z]' ;;
elf64-x86-64:avx2 | elf32-i386:avx2) own='%ymm' beyond=$evex ;;
# Where registers of 64 bytes are no gain, the compiler keeps to those of 32.
elf64-x86-64:avx512 | elf32-i386:avx512) own='%[yz]mm' beyond='^vfn?m(add|sub)|^vp(dp|4dp|opcnt|erm[it]2b)' ;;
elf32-littlearm:base) own='.' beyond=$neon ;;
elf32-littlearm:neon) own=$neon beyond='^vfm[as]|^v[su]dot|^vrint|^vcvt[bt]' ;;
*) own='.' beyond='^$' ;;
esac

fail() {
    echo "$object: $1"
    exit 1
}

for object in "$@"; do
    # Of the weak symbols that templates and inline functions leave behind a program keeps one, whatever it is compiled for.
    # Clang leaves the objects of template arguments (_ZTA) as well: constants, without an instruction.
    weak=$("$nm" --defined-only "$object" | grep -E ' [WVu] ' | grep -v ' V _ZTA' || true)
    [ -z "$weak" ] || fail "weak symbols:
$weak"
    # VFP converts between integers and double as well: its conversions look like NEON's.
    code=$("$objdump" -d --no-show-raw-insn "$object" | sed -nE 's/[0-9a-f]+ <.*//; s/^ +[0-9a-f]+:\t//p' | grep -v '^vcvt\.')
    owned=$(printf '%s\n' "$code" | grep -cE "$own" || true)
    above=$(printf '%s\n' "$code" | grep -E "$beyond" | head -n 3)
    echo "$object: $(printf '%s\n' "$code" | wc -l) instructions, $owned of $instruction_set"
    [ -z "$above" ] || fail "instructions beyond $instruction_set:
$above"
    # NEON flushes small floats to zero, so the compiler leaves a loop of floats to VFP.
    case $instruction_set:$object in neon:*float_correction*) continue ;; esac
    [ "$form" != shipped ] || [ "$owned" -gt 0 ] || fail "no instruction of $instruction_set"
done
