# Runs bin\windows_walk.exe as administrator. That program does all the rest, so that it can be tested without
# PowerShell. For Windows PowerShell 5.1; all letters are ASCII.
param([switch]$Quick)

$program = Join-Path $PSScriptRoot 'bin\windows_walk.exe'
$report = Join-Path $PSScriptRoot 'report.txt'
$options = @()
if ($Quick) {
    $options = @('--quick')
}

$identity = [Security.Principal.WindowsIdentity]::GetCurrent()
$principal = New-Object Security.Principal.WindowsPrincipal($identity)
if ($principal.IsInRole([Security.Principal.WindowsBuiltInRole]::Administrator)) {
    & $program @options
    exit $LASTEXITCODE
}

# Windows asks for the administrator. PowerShell itself starts again, because the question names who made the program.
$words = '-NoProfile -ExecutionPolicy Bypass -File "' + $PSCommandPath + '"'
if ($Quick) {
    $words = $words + ' -Quick'
}
try {
    $process = Start-Process -FilePath 'powershell.exe' -ArgumentList $words -Verb RunAs -PassThru -Wait -ErrorAction Stop
    $code = $process.ExitCode
}
catch {
    Write-Host 'Without an administrator, what needs one is not checked.'
    & $program @options
    $code = $LASTEXITCODE
}
if (Test-Path $report) {
    Get-Content $report
    Write-Host "The report is $report"
}
exit $code
