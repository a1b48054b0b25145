# Completion of kelto for bash.

_kelto_charsets() {
    kelto convert --list-charsets 2>/dev/null
}

_kelto() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        words='format list version convert --help --version'
    else
        case $previous in
        --charset | --from | --to) words=$(_kelto_charsets) ;;
        *)
            case ${COMP_WORDS[1]}:$word in
            format:-*) words='--tag --charset --help' ;;
            list:-*) words='--raw --help' ;;
            version:-*) words='--help' ;;
            convert:-*) words='--from --to --strict --list-charsets --help' ;;
            esac
            ;;
        esac
    fi
    local IFS=$' \t\n'
    if [ -n "$words" ]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -F _kelto kelto
