# The parts of vxemu without platform calls, for the program and the tests: paths from the
# repository's root. They need the model, the include folders emulator, emulator/vxemu, src and
# tools, nlohmann-json and tools/common/text.cpp.
set(VXEMU_PORTABLE_SOURCES
    emulator/vxemu/fault_text.cpp
    emulator/vxemu/field_text.cpp
    emulator/vxemu/flash_image.cpp
    emulator/vxemu/profile_json.cpp
)
