# To be sourced by scripts that try random combinations of switches. RANDOM is seeded by them.

# Sets each variable named to one of the values after its "=".
draw() {
    local choice values
    for choice in "$@"; do
        read -ra values <<<"${choice#*=}"
        printf -v "${choice%%=*}" %s "${values[RANDOM % ${#values[@]}]}"
    done
}
