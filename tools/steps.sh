# What the gates have in common. Sourced by them.

step() { printf '\n== %s (%d s)\n' "$1" "$SECONDS"; }

configure() { cmake --preset "$1" >/dev/null; }

# build_and_test PRESET [TARGET]
build_and_test() {
    step "Build: $1"
    configure "$1"
    cmake --build --preset "$1" --target "${2:-all}"
    step "Tests: $1"
    ctest --preset "$1"
}
