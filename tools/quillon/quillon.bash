# SPDX-License-Identifier: MIT
# Bash completion of the quillon tool: its commands, each command's options, the values of
# --type and --vector, the axes of --turn, --scale and --move, and file names for --file, --svg
# and --output.
_quillon()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}
    local commands="map matrix region info demo"
    local command="" word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case " $commands " in *" $word "*) command=$word; break ;; esac
    done

    case $prev in
        --type)
            COMPREPLY=($(compgen -W "float double guarddouble" -- "$cur")); return ;;
        --vector)
            COMPREPLY=($(compgen -W "int float double guardint guardfloat guarddouble" -- "$cur")); return ;;
        --turn|--scale|--move)
            COMPREPLY=($(compgen -W "x: y: z:" -- "$cur")); compopt -o nospace 2>/dev/null; return ;;
        --file|--svg|--output|-o)
            COMPREPLY=($(compgen -f -- "$cur")); compopt -o filenames 2>/dev/null; return ;;
        --euler|--matrix)
            return ;;
    esac

    local steps="--euler --turn --scale --move --matrix"
    local options
    case $command in
        map) options="--type --vector $steps --file --output --exact --json --help" ;;
        region) options="--type $steps --file --svg --output --exact --json --help" ;;
        matrix) options="--type --exact --json --help" ;;
        info) options="--json --help" ;;
        demo) options="--svg --json --help" ;;
        *) options="--help --version --svg --json" ;;
    esac
    if [[ -z $command && $cur != -* ]]; then
        COMPREPLY=($(compgen -W "$commands" -- "$cur"))
    else
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    fi
}
complete -F _quillon quillon
