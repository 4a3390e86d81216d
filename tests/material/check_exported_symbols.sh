#!/usr/bin/env bash
# Compares what a library exports with a list: everything but weak symbols, and the virtual tables and type information
# of our own classes. What other modules were linked to must not go unnoticed, nor must what they should not see come in.
# usage: check_exported_symbols.sh LIST LIBRARY             fails and prints the differences, if there are any
#        check_exported_symbols.sh --update LIST LIBRARY    writes the list anew
set -euo pipefail
export LC_ALL=C

update=no
if [ "${1-}" = --update ]; then
    update=yes
    shift
fi
if [ $# -ne 2 ]; then
    sed -n '2,/^set/s/^# //p' "$0" >&2
    exit 2
fi
list=$1
library=$2

# The kinds V, W and u are weak. The names left out are the linker's.
exported() {
    nm --dynamic --defined-only --demangle --no-sort "$library" |
        sed -E -n -e '/ [VWu] (vtable|typeinfo|typeinfo name) for ZAXMat[A-Za-z]+$/!{/^[0-9a-f]+ [VWu] /d}' \
            -e 's/^[0-9a-f]+ . //p' |
        grep -vxE '__bss_start|_edata|_end|_init|_fini' | sort -u
}

actual=$(exported)
if [ "$update" = yes ]; then
    printf '%s\n' "$actual" >"$list"
elif ! difference=$(diff <(cat "$list") <(printf '%s\n' "$actual")); then
    echo "$library does not export what $list says:"
    sed -n -e 's/^< /  no longer exported:  /p' -e 's/^> /  newly exported:      /p' <<<"$difference"
    echo "If that is meant: $0 --update $list $library"
    exit 1
fi
