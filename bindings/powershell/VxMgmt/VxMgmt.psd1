@{
    RootModule           = 'VxMgmt.psm1'
    ModuleVersion        = '1.28.0'
    GUID                 = 'b3c1c3a6-6f0e-4a3b-9f5d-2d1f0c8f6a41'
    Author               = 'The VXMGMT developers'
    Copyright            = '(c) 2026 The VXMGMT developers. MIT licence.'
    Description          = 'Fibre Channel host bus adapters, through vxmgr'
    PowerShellVersion    = '5.1'
    CompatiblePSEditions = @('Desktop', 'Core')
    FunctionsToExport    = @('Get-VxAdapter', 'Get-VxPort', 'Get-VxTarget', 'Get-VxHealth',
                             'Watch-VxEvent', 'Update-VxFirmware')
    CmdletsToExport      = @()
    VariablesToExport    = @()
    AliasesToExport      = @()
}
