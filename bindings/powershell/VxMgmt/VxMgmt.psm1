# Fibre Channel host bus adapters as objects. Every command runs vxmgr with JSON as its output: what
# the members mean, vxmgr's manual says, where adapter_serial is what AdapterSerial is here.
Set-StrictMode -Version 2.0

# What vxmgr's exit codes are to PowerShell; its own are 1.
$script:Categories = @{
    2 = 'InvalidArgument'; 3 = 'ObjectNotFound'; 4 = 'NotImplemented'; 5 = 'PermissionDenied'
    6 = 'ResourceBusy'; 7 = 'OperationTimeout'; 8 = 'InvalidData'; 9 = 'WriteError'
    10 = 'OperationStopped'; 11 = 'NotSpecified'
}

# The program: $env:VXMGR, the one of the installation that this module is part of, or on the path.
function Get-VxProgram {
    $candidates = @($env:VXMGR, (Join-Path $PSScriptRoot '..\..\..\bin\vxmgr.exe'))
    foreach ($candidate in $candidates) {
        if ($candidate -and (Test-Path -LiteralPath $candidate -PathType Leaf)) { return $candidate }
    }
    $found = Get-Command 'vxmgr.exe' -CommandType Application -ErrorAction SilentlyContinue
    if (-not $found) {
        throw 'vxmgr.exe is not found: put its folder on the path, or its file name into $env:VXMGR.'
    }
    @($found)[0].Source
}

# Members of JSON have names_like_this; those of PowerShell's objects NamesLikeThis.
function ConvertTo-VxObject {
    param($Value, [string]$TypeName)
    if ($Value -is [System.Management.Automation.PSCustomObject]) {
        $members = [ordered]@{}
        foreach ($member in $Value.PSObject.Properties) {
            $words = $member.Name -split '_' | Where-Object { $_ } |
                ForEach-Object { $_.Substring(0, 1).ToUpperInvariant() + $_.Substring(1) }
            $members[$words -join ''] = ConvertTo-VxObject $member.Value ''
        }
        $object = [pscustomobject]$members
        if ($TypeName) { $object.PSObject.TypeNames.Insert(0, $TypeName) }
        return $object
    }
    if ($Value -is [array]) {
        return , @($Value | ForEach-Object { ConvertTo-VxObject $_ '' })
    }
    $Value
}

# Runs vxmgr; each line that it prints goes to the pipeline as it comes.
function Invoke-VxProgram {
    param([string[]]$Arguments)
    $program = Get-VxProgram
    # What it prints is UTF-8. A host without a console has no encoding to set.
    $before = $null
    try {
        $before = [Console]::OutputEncoding
        [Console]::OutputEncoding = New-Object System.Text.UTF8Encoding $false
    } catch [System.IO.IOException] {
        $before = $null
    }
    # The document has all that is said on the error stream, which must end nothing.
    $ErrorActionPreference = 'Continue'
    try {
        & $program @Arguments 2>$null
    } finally {
        if ($before) { [Console]::OutputEncoding = $before }
    }
}

# Writes the errors of a document. A part of several objects that failed has a status of its own and
# is among the results, too.
function Write-VxError {
    param($Document, $Cmdlet)
    foreach ($message in @($Document.messages)) {
        if (-not $message) { continue }
        if ($message.severity -ne 'error') {
            $Cmdlet.WriteWarning($message.text)
            continue
        }
        $category = $script:Categories[[int]$Document.exit]
        if (-not $category) { $category = 'NotSpecified' }
        $record = New-Object System.Management.Automation.ErrorRecord -ArgumentList @(
            (New-Object System.InvalidOperationException $message.text),
            ('VxMgmt.Exit{0}' -f $Document.exit), $category, $message.object)
        if ($message.hint) {
            $record.ErrorDetails = New-Object System.Management.Automation.ErrorDetails $message.text
            $record.ErrorDetails.RecommendedAction = $message.hint
        }
        $Cmdlet.WriteError($record)
    }
}

# Runs a command of vxmgr and returns its document.
function Invoke-VxCommand {
    param([string[]]$Arguments, $Cmdlet)
    $printed = (Invoke-VxProgram ($Arguments + @('--json', '--quiet'))) -join "`n"
    if (-not $printed) { throw "vxmgr $($Arguments -join ' ') printed nothing." }
    $document = $printed | ConvertFrom-Json
    Write-VxError $document $Cmdlet
    $document
}

# The objects of a list that a document's result has.
function Get-VxRows {
    param($Document, [string]$List, [string]$TypeName)
    if ($null -eq $Document.result) { return }
    foreach ($row in @($Document.result.$List)) {
        if ($null -ne $row) { ConvertTo-VxObject $row $TypeName }
    }
}

# What to ask: a port before its adapter, so that objects of the pipeline mean themselves.
function Get-VxSelection {
    param([string]$Adapter, [string]$Port, [string]$AdapterSerial, [string]$PortWwn)
    if ($Port) { return @('-p', $Port) }
    if ($PortWwn) { return @('-p', "wwn:$PortWwn") }
    if ($Adapter) { return @('-a', $Adapter) }
    if ($AdapterSerial) { return @('-a', "serial:$AdapterSerial") }
    @()
}

function Get-VxAdapter {
    <#
    .SYNOPSIS
    Lists the adapters.
    .PARAMETER Adapter
    Which of them: serial:TEXT, wwn:..., index:N, scsi:N, or a serial number. All without.
    .EXAMPLE
    Get-VxAdapter | Where-Object PortsOnline -lt PortCount
    #>
    [CmdletBinding()]
    param([Parameter(Position = 0)][string]$Adapter)
    $document = Invoke-VxCommand (@('adapter', 'list') + (Get-VxSelection -Adapter $Adapter)) $PSCmdlet
    Get-VxRows $document 'adapters' 'VxMgmt.Adapter'
}

function Get-VxPort {
    <#
    .SYNOPSIS
    Lists the Fibre Channel ports of all adapters, or of those of the pipeline.
    .PARAMETER Port
    Which of them: wwn:..., index:N, scsi:N, or a port name.
    .EXAMPLE
    Get-VxAdapter EMU7740A0001 | Get-VxPort | Format-Table ScsiPort, PortWwn, State, SpeedGbit
    #>
    [CmdletBinding()]
    param(
        [Parameter(Position = 0)][string]$Port,
        [string]$Adapter,
        [Parameter(ValueFromPipelineByPropertyName = $true)][string]$AdapterSerial,
        [Parameter(ValueFromPipelineByPropertyName = $true)][string]$PortWwn
    )
    process {
        $selection = Get-VxSelection $Adapter $Port $AdapterSerial $PortWwn
        $document = Invoke-VxCommand (@('port', 'list') + $selection) $PSCmdlet
        Get-VxRows $document 'ports' 'VxMgmt.Port'
    }
}

function Get-VxTarget {
    <#
    .SYNOPSIS
    Lists the targets that ports see.
    .EXAMPLE
    Get-VxPort scsi:3 | Get-VxTarget | Where-Object { -not $_.Present }
    #>
    [CmdletBinding()]
    param(
        [Parameter(Position = 0)][string]$Port,
        [string]$Adapter,
        [Parameter(ValueFromPipelineByPropertyName = $true)][string]$AdapterSerial,
        [Parameter(ValueFromPipelineByPropertyName = $true)][string]$PortWwn
    )
    process {
        $selection = Get-VxSelection $Adapter $Port $AdapterSerial $PortWwn
        $document = Invoke-VxCommand (@('target', 'list') + $selection) $PSCmdlet
        Get-VxRows $document 'targets' 'VxMgmt.Target'
    }
}

function Get-VxHealth {
    <#
    .SYNOPSIS
    Lists what is wrong with adapters and ports, worst first; nothing when all is well.
    .PARAMETER SampleSeconds
    Judges what is counted in this time instead of since the reset.
    .EXAMPLE
    if (Get-VxHealth | Where-Object State -eq critical) { ... }
    #>
    [CmdletBinding()]
    param(
        [Parameter(Position = 0)][string]$Port,
        [string]$Adapter,
        [Parameter(ValueFromPipelineByPropertyName = $true)][string]$AdapterSerial,
        [Parameter(ValueFromPipelineByPropertyName = $true)][string]$PortWwn,
        [ValidateRange(1, 86400)][int]$SampleSeconds
    )
    process {
        $arguments = @('health') + (Get-VxSelection $Adapter $Port $AdapterSerial $PortWwn)
        if ($PSBoundParameters.ContainsKey('SampleSeconds')) {
            $arguments += @('--sample', "$SampleSeconds")
        }
        Get-VxRows (Invoke-VxCommand $arguments $PSCmdlet) 'checks' 'VxMgmt.Health'
    }
}

function Watch-VxEvent {
    <#
    .SYNOPSIS
    Puts the events of ports into the pipeline as they come.
    .PARAMETER Count
    Ends after this many; without Count and Seconds it goes on until it is stopped.
    .EXAMPLE
    Watch-VxEvent -Kind link-down | ForEach-Object { Send-Alarm $_.PortWwn $_.Time }
    #>
    [CmdletBinding()]
    param(
        [Parameter(Position = 0)][string]$Port,
        [string]$Adapter,
        [ValidateSet('lip', 'link-up', 'link-down', 'lip-reset', 'rscn', 'port-update', 'test')]
        [string[]]$Kind = @(),
        [ValidateRange(1, 2147483647)][int]$Count,
        [ValidateRange(1, 2147483647)][int]$Seconds
    )
    $arguments = @('event', 'watch', '-o', 'jsonl', '--quiet') + (Get-VxSelection $Adapter $Port)
    foreach ($one in $Kind) { $arguments += @('--kind', $one) }
    if ($PSBoundParameters.ContainsKey('Count')) { $arguments += @('--count', "$Count") }
    if ($PSBoundParameters.ContainsKey('Seconds')) { $arguments += @('--for', "$Seconds") }
    # One line is one event; the last line is the end of the document.
    Invoke-VxProgram $arguments | ForEach-Object {
        $line = $_ | ConvertFrom-Json
        if ($line.PSObject.Properties['row']) {
            ConvertTo-VxObject $line.row 'VxMgmt.Event'
        } else {
            Write-VxError $line $PSCmdlet
        }
    }
}

function Update-VxFirmware {
    <#
    .SYNOPSIS
    Writes firmware or boot code to an adapter, proves it, and starts it.
    .DESCRIPTION
    An update that goes wrong can leave the adapter unusable. It asks before it writes; -WhatIf says
    what it would do, after all checks that need no writing. -Confirm:$false asks nothing.
    .PARAMETER AdapterSerial
    The adapter, by its serial number. Objects of Get-VxAdapter have it.
    .PARAMETER Path
    Files of firmware or boot code; several make one update.
    .EXAMPLE
    Get-VxAdapter EMU7740A0001 | Update-VxFirmware firmware.bin -WhatIf
    #>
    [CmdletBinding(SupportsShouldProcess = $true, ConfirmImpact = 'High')]
    param(
        [Parameter(Mandatory = $true, Position = 0)][string[]]$Path,
        [Parameter(Mandatory = $true, ValueFromPipelineByPropertyName = $true)]
        [ValidateNotNullOrEmpty()][string]$AdapterSerial,
        [string]$BackupFolder,
        [switch]$AllowOlder,
        [switch]$AllowSame,
        [switch]$AllowBootFromSan,
        [switch]$NoActivate,
        [switch]$SkipBackup
    )
    process {
        $files = @($Path | ForEach-Object {
            $PSCmdlet.SessionState.Path.GetUnresolvedProviderPathFromPSPath($_)
        })
        $arguments = @('fw', 'update') + $files + @('-a', "serial:$AdapterSerial")
        if ($BackupFolder) {
            $arguments += @('--backup',
                $PSCmdlet.SessionState.Path.GetUnresolvedProviderPathFromPSPath($BackupFolder))
        }
        if ($AllowOlder) { $arguments += '--allow-older' }
        if ($AllowSame) { $arguments += '--allow-same' }
        if ($AllowBootFromSan) { $arguments += '--allow-boot-from-san' }
        if ($NoActivate) { $arguments += '--no-activate' }
        if ($SkipBackup) { $arguments += '--skip-backup' }
        if ($PSCmdlet.ShouldProcess("adapter $AdapterSerial", "write $($files -join ', ')")) {
            $arguments += @('--yes', '--confirm', $AdapterSerial)
        } elseif ($WhatIfPreference) {
            $arguments += '--dry-run'
        } else {
            return
        }
        $document = Invoke-VxCommand $arguments $PSCmdlet
        if ($null -ne $document.result) { ConvertTo-VxObject $document.result 'VxMgmt.Update' }
    }
}
