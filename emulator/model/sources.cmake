# The adapter model, for whoever compiles it: paths from the repository's root. It needs the
# include folders emulator, include and src.
set(VXEMU_MODEL_SOURCES
    emulator/model/binding_handlers.cpp
    emulator/model/block_store.cpp
    emulator/model/built_in_profiles.cpp
    emulator/model/bytes.cpp
    emulator/model/control.cpp
    emulator/model/device_handlers.cpp
    emulator/model/diagnostic_handlers.cpp
    emulator/model/dump_handlers.cpp
    emulator/model/dump_record.cpp
    emulator/model/event_handlers.cpp
    emulator/model/event_queue.cpp
    emulator/model/fabric.cpp
    emulator/model/fabric_handlers.cpp
    emulator/model/faults.cpp
    emulator/model/handlers.cpp
    emulator/model/legacy_handlers.cpp
    emulator/model/model.cpp
    emulator/model/name_server.cpp
    emulator/model/os_disks.cpp
    emulator/model/node_handlers.cpp
    emulator/model/port.cpp
    emulator/model/port_handlers.cpp
    emulator/model/profile.cpp
    emulator/model/profile_fields.cpp
    emulator/model/profile_targets.cpp
    emulator/model/scsi_blocks.cpp
    emulator/model/scsi_handlers.cpp
    emulator/model/scsi_identity.cpp
    emulator/model/scsi_task.cpp
    emulator/model/statistics.cpp
    emulator/model/stored_config.cpp
)
# What the model shares with the library; not for programs that have the library's objects.
set(VXEMU_MODEL_SHARED_SOURCES
    src/persist/blocks.cpp
)
set(VXEMU_MODEL_INCLUDE_DIRS emulator include src)
