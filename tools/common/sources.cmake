# The frame's sources, relative to the repository.

# Free of platform calls: also built natively, for the tests.
set(VXTOOLS_PORTABLE_SOURCES
    tools/common/command_line.cpp
    tools/common/completion.cpp
    tools/common/confirm.cpp
    tools/common/exit_codes.cpp
    tools/common/json_document.cpp
    tools/common/record.cpp
    tools/common/redaction.cpp
    tools/common/render.cpp
    tools/common/selector.cpp
    tools/common/status_codes.cpp
    tools/common/stop.cpp
    tools/common/text.cpp
    tools/common/wwn.cpp
)
set(VXTOOLS_CONSOLE_SOURCES
    tools/common/builtin_commands.cpp
    tools/common/console_windows.cpp
    tools/common/invocation.cpp
    tools/common/output.cpp
    tools/common/run.cpp
)
