# SPDX-License-Identifier: MIT
# Completion of vlt for bash: verbs and options as `vlt help` lists them, and files.
_vlt() {
    local current="${COMP_WORDS[COMP_CWORD]}" verb=() word help
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case "$word" in
            -*) ;;
            db | bom | help) verb+=("$word") ;;
            *) verb+=("$word") && break ;;
        esac
    done
    [ "${verb[0]}" = help ] && verb=("${verb[@]:1}")
    help="$("${COMP_WORDS[0]}" help "${verb[@]}" 2>/dev/null)"
    local words
    words="$(sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' <<<"$help")"
    [[ "$current" == -* ]] && words="$(grep -oE '(^| |,)--?[A-Za-z0-9][a-z-]*' <<<"$help" | tr -d ' ,')"
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    [ -n "$words" ] && [ ${#COMPREPLY[@]} -gt 0 ] || mapfile -t COMPREPLY < <(compgen -f -- "$current")
}
complete -o filenames -F _vlt vlt
