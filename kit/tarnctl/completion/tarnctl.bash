# bash completion for tarnctl and tarn-fleet. The program itself says what can follow: `tarnctl complete WORD...`

_tarnctl()
{
    # Bash takes '=' and ':' for words of their own; the program gets the words as they were typed, the last one up to the cursor.
    local line="${COMP_LINE:0:COMP_POINT}" words=() index part rest
    for ((index = 0; index <= COMP_CWORD; ++index)); do
        rest="${line#"${line%%[![:space:]]*}"}"
        part="${COMP_WORDS[index]}"
        if ((index == COMP_CWORD)); then
            part="$rest"
        fi
        if ((index == 0)) || [[ $rest != "$line" ]]; then
            words+=("$part")
        else
            words[-1]+="$part"
        fi
        line="${rest#"$part"}"
    done

    # Of what is offered, bash inserts only what is behind the last of its word breaks.
    local breaks="${COMP_WORDBREAKS//[^=:@]/}" present="${words[-1]}" kept='' word
    if [[ -n $breaks ]]; then
        kept="${present%"${present##*["$breaks"]}"}"
    fi
    COMPREPLY=()
    while IFS=$'\t' read -r word _; do
        case "$word" in
        '<file>') compopt -o default 2> /dev/null ;;
        '<directory>') compopt -o dirnames 2> /dev/null ;;
        *) COMPREPLY+=("$(printf '%q' "${word#"$kept"}")") ;;
        esac
    done < <("${words[0]}" complete -- "${words[@]:1}" 2> /dev/null)
    if [[ ${COMPREPLY[0]} == *[=.[] ]]; then
        compopt -o nospace 2> /dev/null
    fi
}

complete -F _tarnctl tarnctl tarn-fleet
