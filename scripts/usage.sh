# Sourced by the scripts that people call: the comment at a script's head is its usage. Only defines functions.

# usage: prints it.
usage() { awk 'NR > 1 { if (!sub(/^# ?/, "")) exit; print }' "$0"; }

# wrong_usage WHAT: prints the error and the usage, and exits with 2.
wrong_usage() {
    echo "$(basename "$0"): $*" >&2
    usage >&2
    exit 2
}

# help_wanted ARGUMENT ...: if the first argument asks for help, prints the usage and exits.
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
