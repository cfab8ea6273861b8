# Lists the C++ files of the tree. To be sourced in its root; usage: sources [FOLDER...]   (names end with a zero byte)

sources() {
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files -z -- "$@"
    else
        find "${@:-.}" -path ./build -prune -o -type f -print0 | sed -z 's|^\./||'
    fi | grep -z -E '\.(h|cpp)$'
}
