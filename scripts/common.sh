# Shared by the scripts of this folder; read with `. "$(dirname "$0")/common.sh"`.
set -eu

cd "$(dirname "$0")/.."

say() { printf '== %s\n' "$*" >&2; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 2
}

# Compiles through ccache where it is there; only a first configuration looks at this.
if [ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ] && command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    export CCACHE_SLOPPINESS="${CCACHE_SLOPPINESS:-pch_defines,time_macros,include_file_mtime,include_file_ctime}"
fi

# quietly LOG COMMAND...: what the command prints goes to LOG and is shown only when it fails.
quietly() {
    log=$1
    shift
    mkdir -p "$(dirname "$log")"
    if "$@" >"$log" 2>&1; then return 0; else status=$?; fi
    cat "$log" >&2
    return "$status"
}

# Sources of the project, those not added yet too, one a line.
sources() { git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp' | sort -u; }
