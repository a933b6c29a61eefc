# Sourced by scripts/demo.sh: the functions that its acts share, and the table at the end.
# Uses $prefix (the Wine prefix), $bin (the built programs) and $demo (a folder for the demo's files).

rows=()
failures=0
mark=0 # number of trace lines before the current step

title() { printf '\n\033[1m== %s\033[0m\n' "$*"; }

# step TEXT: announces the next step; expect_line searches the trace from here on.
step() {
    printf '\033[36m-- %s\033[0m\n' "$*"
    mark=$(wc -l <"$demo/trace.log")
}

# expect WHAT EXPECTED SEEN: adds one row to the table.
expect() {
    local verdict=ok
    [ "$2" = "$3" ] || { verdict=DIFFERS; failures=$((failures + 1)); }
    rows+=("$1"$'\x1f'"$2"$'\x1f'"$3"$'\x1f'"$verdict")
}

# await WHAT SECONDS COMMAND ...: waits until the command succeeds. If it does not succeed at once, prints what it waits
# for. After three expired waits it checks the rest without waiting, because later steps depend on earlier ones.
await() {
    local what=$1 seconds=$2 start=$SECONDS said=
    shift 2
    [ $waits_in_vain -lt 3 ] || seconds=2
    until "$@"; do
        if [ $((SECONDS - start)) -ge "$seconds" ]; then
            waits_in_vain=$((waits_in_vain + 1))
            printf '\033[31m-- not seen within %d s: %s\033[0m\n' "$seconds" "$what"
            return 1
        fi
        if [ -z "$said" ] && [ $((SECONDS - start)) -ge 5 ]; then
            said=yes
            printf '   (waits up to %d s for: %s)\n' "$seconds" "$what"
        fi
        sleep 0.1
    done
}
waits_in_vain=0

# expect_line WHAT LINE SECONDS: expects the complete trace line within that time.
expect_line() {
    local seen='(no such line)'
    ! await "$1" "$3" trace_has "$2" || seen=$2
    expect "$1" "$2" "$seen"
}
trace_has() { trace_since_mark | grep -qxF -- "$1"; }

# Prints the output of kestratrace, without time and process.
trace_text() { tr -d '\r' | cut -c43-; }

# Prints the lines of the current step.
trace_since_mark() { tail -n +$((mark + 1)) "$demo/trace.log" | trace_text; }

# expect_report WHAT PROGRAM LINE SECONDS: expects a line in the report of the started application since the step began.
expect_report() {
    local file="$prefix/drive_c/users/$(id -un)/AppData/Local/Corvane Sample Viewer/$2.txt"
    local seen='(not started)'
    ! await "$1" "$4" grep -qsxF -- "$3" "$file" || seen=$3
    expect "$1" "$3" "$seen"
}

# forget_report PROGRAM: deletes the report, so that only the next start is in it.
forget_report() { rm -f "$prefix/drive_c/users/$(id -un)/AppData/Local/Corvane Sample Viewer/$1.txt"; }

# in_wine SECONDS PROGRAM ...: runs a program and waits for it. If it fails, prints a message, because the demo then ends.
in_wine() {
    local status=0
    wine_run "$prefix" "$@" || status=$?
    case $status in
    0) ;;
    124 | 137) echo "demo: terminated after $1 s: ${*:2}" >&2 ;;
    *) echo "demo: exit code $status from: ${*:2}" >&2 ;;
    esac
    return $status
}

# boot FOLDER [ARGUMENT ...]: runs kestraboot.exe of an installed application in the background, as at log-on.
boot() {
    (cd "$1" && wine_in "$prefix" timeout 1800 wine kestraboot.exe "${@:2}" </dev/null >/dev/null 2>&1) &
}

trace_shown= # the process that shows it

# Shows the trace of every process of the prefix, with times, as it is written.
trace_start() {
    : >"$demo/trace.log"
    wine_in "$prefix" timeout 1800 wine "$bin/kestratrace.exe" </dev/null >"$demo/trace.log" 2>&1 &
    tail --pid=$$ -n +1 -f "$demo/trace.log" 2>/dev/null | sed -u 's/^/     /' &
    trace_shown=$!
}

trace_end() { [ -z "$trace_shown" ] || kill "$trace_shown" 2>/dev/null || true; }

# Prints the table; fails if a row differs.
print_table() {
    local row what expected seen verdict
    title "Expected against seen"
    for row in "${rows[@]}"; do
        IFS=$'\x1f' read -r what expected seen verdict <<<"$row"
        if [ "$verdict" = ok ]; then
            printf '  ok       %-46s %s\n' "$what" "$seen"
        else
            printf '  DIFFERS  %-46s expected: %s\n%58s seen: %s\n' "$what" "$expected" '' "$seen"
        fi
    done
    printf '\n%d of %d as expected\n' $((${#rows[@]} - failures)) ${#rows[@]}
    [ $failures -eq 0 ]
}
