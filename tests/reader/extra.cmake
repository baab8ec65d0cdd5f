# The class values of the reader tests come from the fixture library of the
# types tests (its Widget class, default object and deserializer).
add_dependencies(${target} KestoTypesFixture)
target_compile_definitions(${target} PRIVATE KESTODM_TYPES_FIXTURE_DIR="$<TARGET_FILE_DIR:KestoTypesFixture>")
