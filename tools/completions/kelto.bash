# Completion of kelto for bash.

# The options of a subcommand; those that end with '=' take a value.
_kelto_options() {
    case $1 in
    format) echo '--tag --charset= --language= --number --help' ;;
    list) echo '--raw --language= --help' ;;
    version) echo '--help' ;;
    compile) echo '--output= --raw --help' ;;
    gen) echo '--output= --namespace= --depfile= --form= --help' ;;
    export) echo '--to= --reference= --update= --output= --language= --copy-source --form= --help' ;;
    import)
        echo '--reference= --output= --assign --numbers= --fuzzy --keep-going --check --force --language= --format=
            --form= --quiet --help -Werror'
        ;;
    stats) echo '--reference= --html= --used --namespace= --form= --help' ;;
    pseudo) echo '--output= --expand= --bidi --form= --help' ;;
    check)
        echo '--reference= --project= --complete= --baseline= --update-baseline --limit= --format= --output= --color=
            --raw --form= --jobs= --stdin-filename= --quiet --list-rules --explain= --help -Werror -Wno-error'
        ;;
    convert) echo '--from= --to= --strict --list-charsets --help' ;;
    esac
}

# What kind of value an option of a subcommand takes.
_kelto_kind() {
    case $1:$2 in
    check:--format) echo form ;;
    check:--color) echo when ;;
    check:--explain) echo rule ;;
    compile:-o | compile:--output | check:-r | check:--reference | check:-o | check:--output | \
        check:--project | check:--baseline) echo file ;;
    gen:-o | gen:--output | gen:--depfile | pseudo:-o | pseudo:--output) echo file ;;
    export:-r | export:--reference | export:--update | export:-o | export:--output) echo file ;;
    import:-r | import:--reference | import:-o | import:--output | import:--numbers) echo file ;;
    stats:-r | stats:--reference | stats:--html) echo file ;;
    stats:--namespace | stats:--form) echo other ;;
    export:--to) echo bilingual ;;
    import:--format) echo form ;;
    pseudo:--expand | pseudo:--form | export:--language | export:--form) echo other ;;
    import:--language | import:--form) echo other ;;
    format:-l | format:--language | list:-l | list:--language) echo other ;;
    check:--complete | check:--limit) echo other ;;
    gen:--form | gen:--namespace | check:--form | check:-j | check:--jobs | check:--stdin-filename) echo other ;;
    format:-c | format:--charset | convert:-f | convert:--from | convert:-t | convert:--to) echo charset ;;
    esac
}

# The rules of the checker, behind each of the prefixes: "all", or what can be chosen, since those that keep a file from
# loading stay as they are. The list, in English, puts "name error|warning|off summary" in a line.
_kelto_rules() {
    local rules prefix fixed='xml-syntax|structure|attribute-missing|bad-id|duplicate-id|language'
    [ "$1" != all ] || fixed=
    shift
    rules=$(LC_ALL=C kelto check --list-rules 2>/dev/null | sed 's/ .*//' | grep -Evx "$fixed")
    for prefix in "$@"; do
        compgen -P "$prefix" -W "$rules"
    done
}

_kelto() {
    local IFS=$' \t\n' word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local subcommand=${COMP_WORDS[1]} option i skip=
    local -a operands=()
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        local subcommands='format list version check gen export import stats pseudo compile convert help'
        mapfile -t COMPREPLY < <(compgen -W "$subcommands --help --version" -- "$word")
        return
    fi

    # Bash makes "--to=UTF" three words.
    if [ "$word" = = ]; then
        word=
    elif [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    local words=
    if [[ $word = -W* ]]; then
        words="error no-error $(_kelto_rules chosen '' no- error= no-error=)"
        mapfile -t COMPREPLY < <(compgen -P -W -W "$words" -- "${word#-W}")
        return
    fi
    local kind
    kind=$(_kelto_kind "$subcommand" "$previous")
    case $kind in
    charset) words=$(kelto convert --list-charsets 2>/dev/null) ;;
    form) words='text json sarif github' ;;
    bilingual) words='po xliff xliff2' ;;
    when) words='auto always never' ;;
    rule) words=$(_kelto_rules all '') ;;
    esac
    if [ -n "$kind" ] && [ "$kind" != file ]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
        return
    fi

    for ((i = 2; i < COMP_CWORD; i++)); do
        option=${COMP_WORDS[i]}
        if [ "$option" = = ]; then
            skip=value
        elif [ -n "$skip" ]; then
            skip=
        elif [[ $option != -* || ${#operands[@]} -gt 0 && $subcommand = format ]]; then
            operands+=("$option")
        else
            skip=$(_kelto_kind "$subcommand" "$option")
        fi
    done
    if [ "$subcommand" = format ] && [ "${#operands[@]}" -gt 0 ]; then
        # The number of a message; its arguments can be anything.
        [ "${#operands[@]}" -gt 1 ] ||
            mapfile -t COMPREPLY < <(compgen -W "$(kelto list "${operands[0]}" 2>/dev/null | cut -f 1)" -- "$word")
    elif [[ $word = -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_kelto_options "$subcommand")" -- "$word")
        [[ ${COMPREPLY[0]} != *= ]] || compopt -o nospace
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -F _kelto kelto
