# SPDX-License-Identifier: MIT
# Completes the arguments of imprinter in bash. To be sourced, or installed as
# share/bash-completion/completions/imprinter.

_imprinter() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} at=1 command
    local commands='open list show stamp unstamp preview export import pictures'
    local places='top-left top top-right left center right bottom-left bottom bottom-right'
    local store=()
    COMPREPLY=()
    if [[ ${COMP_WORDS[1]} == --store ]]; then
        store=(--store "${COMP_WORDS[2]}")
        at=3
    fi
    command=${COMP_WORDS[at]}

    local names=false
    case $before in
        --configuration) names=true ;;
        --stamp)
            names=true
            mapfile -t COMPREPLY < <(compgen -W "$(printf 'title-%s ' $places)" -- "$word") ;;
        --output | --password-file | --store)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return ;;
        --border)
            mapfile -t COMPREPLY < <(compgen -W 'none rectangle rounded oval double dashed underline corners' -- "$word")
            return ;;
        --position)
            mapfile -t COMPREPLY < <(compgen -W "$places" -- "$word")
            return ;;
        --color | --border-color | --fill)
            mapfile -t COMPREPLY < <(compgen -W 'black blue gray green orange purple red white yellow' -- "$word")
            return ;;
        --pages | --first-number | --jobs | --title | --font | --size | --thickness | --offset | --rotate) return ;;
    esac
    if [[ $COMP_CWORD -gt $at && $word != -* && ($command == show || $command == export) ]]; then
        names=true
    fi
    if $names; then
        local name
        while IFS= read -r name; do
            [[ $name == "${word//\\/}"* ]] && COMPREPLY+=("$(printf '%q' "$name")")
        done < <("${COMP_WORDS[0]}" "${store[@]}" list 2>/dev/null)
        return
    fi
    if [[ $COMP_CWORD -le $at ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands --store --help --version" -- "$word")
        return
    fi
    if [[ $word == -* ]]; then
        local options='--help'
        case $command in
            stamp) options+=' --configuration --title --font --size --color --border --border-color --thickness --fill
                --position --offset --rotate --output --in-place --force --pages --first-number --replace --password-file
                --allow-signed --incremental --rewrite --dry-run --jobs --json' ;;
            unstamp) options+=' --list --stamp --configuration --output --in-place --force --pages --password-file
                --allow-signed --incremental --rewrite --dry-run --jobs --json' ;;
            preview) options+=' --configuration --output' ;;
            export) options+=' --output' ;;
            import) options+=' --replace' ;;
        esac
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        return
    fi
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
}
complete -F _imprinter imprinter
