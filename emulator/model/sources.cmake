# The adapter model, for whoever compiles it: paths from the repository's root. It needs the
# include folders emulator and src.
set(VXEMU_MODEL_SOURCES
    emulator/model/built_in_profiles.cpp
    emulator/model/bytes.cpp
    emulator/model/control.cpp
    emulator/model/event_handlers.cpp
    emulator/model/event_queue.cpp
    emulator/model/faults.cpp
    emulator/model/handlers.cpp
    emulator/model/legacy_handlers.cpp
    emulator/model/model.cpp
    emulator/model/node_handlers.cpp
    emulator/model/port.cpp
    emulator/model/port_handlers.cpp
    emulator/model/profile.cpp
    emulator/model/profile_fields.cpp
)
set(VXEMU_MODEL_INCLUDE_DIRS emulator src)
