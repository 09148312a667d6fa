# Completes tindelwax's commands, and their options as each tells them itself.
_tindelwax() {
    local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]} words
    if ((COMP_CWORD == 1)); then
        words=$(tindelwax --help | sed -n '/^Subcommands:/,$s/^  \([a-z]\+\) .*/\1/p')
    elif [[ $word == -* ]]; then
        words=$(tindelwax "$command" --help 2>/dev/null | grep -oE -- '^ +(-[a-z], ?)?--[a-z-]+' | grep -oE -- '--[a-z-]+')
    else
        return # files
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _tindelwax tindelwax
