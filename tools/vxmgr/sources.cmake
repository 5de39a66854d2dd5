# The protocols' encoders and decoders, relative to the repository. Free of platform calls: also
# built natively, for the tests.
set(VXMGR_PORTABLE_SOURCES
    tools/vxmgr/fc_ct.cpp
    tools/vxmgr/fc_els.cpp
    tools/vxmgr/scsi_bytes.cpp
    tools/vxmgr/scsi_inquiry.cpp
    tools/vxmgr/scsi_sense.cpp
    tools/vxmgr/scsi_target.cpp
    tools/vxmgr/scsi_units.cpp
)
