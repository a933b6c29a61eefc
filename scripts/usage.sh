# Sourced by the scripts that people call: the comment at a script's head is its usage. Defines functions alone.

# usage: prints it.
usage() { awk 'NR > 1 { if (!sub(/^# ?/, "")) exit; print }' "$0"; }

# wrong_usage WHAT: says what is wrong, and the usage, and ends the script with 2.
wrong_usage() {
    echo "$(basename "$0"): $*" >&2
    usage >&2
    exit 2
}

# help_wanted ARGUMENT ...: prints the usage and ends the script where the first argument asks for it.
help_wanted() {
    case ${1-} in
    -h | --help) usage && exit 0 ;;
    esac
}

# no_arguments ARGUMENT ...: for a script that takes none.
no_arguments() {
    help_wanted "$@"
    [ $# -eq 0 ] || wrong_usage "takes no arguments, and was given: $*"
}
