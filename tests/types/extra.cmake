# A real native library for the DmClassSerialization and DmClassType tests. It
# uses Kesto::Ptr and Kesto::SerializationData, so it links the library; the
# tests get its directory as KESTODM_TYPES_FIXTURE_DIR.
add_library(KestoTypesFixture SHARED ${CMAKE_CURRENT_SOURCE_DIR}/types/fixture/ClassFixture.cpp)
target_link_libraries(KestoTypesFixture PRIVATE KestoDM::KestoDM)
set_target_properties(KestoTypesFixture PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
kestodm_set_warnings(KestoTypesFixture)
add_dependencies(${target} KestoTypesFixture)
target_compile_definitions(${target} PRIVATE KESTODM_TYPES_FIXTURE_DIR="$<TARGET_FILE_DIR:KestoTypesFixture>")
