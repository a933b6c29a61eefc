# Sourced by scripts/demo.sh: the stage on which its acts are played, and the table at the end.
# Uses $prefix (the Wine prefix), $bin (the built programs) and $demo (a folder for what the demo makes).

rows=()
failures=0
mark=0 # how many trace lines were there before the current step

title() { printf '\n\033[1m== %s\033[0m\n' "$*"; }

# step TEXT: says what happens next; expect_line looks at the trace from here on.
step() {
    printf '\033[36m-- %s\033[0m\n' "$*"
    mark=$(wc -l <"$demo/trace.log")
}

# expect WHAT EXPECTED SEEN: one row of the table.
expect() {
    local verdict=ok
    [ "$2" = "$3" ] || { verdict=DIFFERS; failures=$((failures + 1)); }
    rows+=("$1"$'\x1f'"$2"$'\x1f'"$3"$'\x1f'"$verdict")
}

# await WHAT SECONDS COMMAND ...: until the command succeeds. Says what it waits for where that is not at once. After
# three waits in vain the rest is looked at, but no longer waited for: it builds on what did not come.
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

# expect_line WHAT LINE SECONDS: the trace line, whole, within that time.
expect_line() {
    local seen='(no such line)'
    ! await "$1" "$3" trace_has "$2" || seen=$2
    expect "$1" "$2" "$seen"
}
trace_has() { trace_since_mark | grep -qxF -- "$1"; }

# What kestratrace shows, without time and process.
trace_text() { tr -d '\r' | cut -c43-; }

# The lines of the current step.
trace_since_mark() { tail -n +$((mark + 1)) "$demo/trace.log" | trace_text; }

# expect_report WHAT PROGRAM LINE SECONDS: a line that the started application wrote down since the step began.
expect_report() {
    local file="$prefix/drive_c/users/$(id -un)/AppData/Local/Corvane Sample Viewer/$2.txt"
    local seen='(not started)'
    ! await "$1" "$4" grep -qsxF -- "$3" "$file" || seen=$3
    expect "$1" "$3" "$seen"
}

# forget_report PROGRAM: so that the next start is seen for itself.
forget_report() { rm -f "$prefix/drive_c/users/$(id -un)/AppData/Local/Corvane Sample Viewer/$1.txt"; }

# in_wine SECONDS PROGRAM ...: a program of the demo, waited for. Says so where it fails, since the demo ends there.
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

# boot FOLDER [ARGUMENT ...]: kestraboot.exe of an installed application, in the background, as at log-on.
boot() {
    (cd "$1" && wine_in "$prefix" timeout 1800 wine kestraboot.exe "${@:2}" </dev/null >/dev/null 2>&1) &
}

trace_shown= # the process that shows it

# The trace of every process of the prefix, with times, shown as it comes.
trace_start() {
    : >"$demo/trace.log"
    wine_in "$prefix" timeout 1800 wine "$bin/kestratrace.exe" </dev/null >"$demo/trace.log" 2>&1 &
    tail --pid=$$ -n +1 -f "$demo/trace.log" 2>/dev/null | sed -u 's/^/     /' &
    trace_shown=$!
}

trace_end() { [ -z "$trace_shown" ] || kill "$trace_shown" 2>/dev/null || true; }

# The table; false where a row differs.
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
