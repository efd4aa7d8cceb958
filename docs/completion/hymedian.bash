# Completion for bash: options from the program's own help, files for the rest.
_hymedian() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    case $before in
    --compression) COMPREPLY=($(compgen -W "none lzw zip packbits zstd group4" -- "$word")) ;;
    --format) COMPREPLY=($(compgen -W "png jpg tif webp heic avif ppm pam" -- "$word")) ;;
    -r | --radius) COMPREPLY=($(compgen -W "1 2 3 4 5 6" -- "$word")) ;;
    --plugin) COMPREPLY=($(compgen -d -- "$word")) ;;
    *)
        if [[ $word == -* ]]; then
            COMPREPLY=($(compgen -W "$("$1" --help 2>/dev/null | grep -oE '^  (-[a-zA-Z],)?--[a-z-]+' | tr ',' ' ')" -- "$word"))
        else
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
        fi
        ;;
    esac
}
complete -F _hymedian hymedian
