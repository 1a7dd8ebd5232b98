# Never run: there is no PowerShell under Wine.
# Records two seconds from four channels and prints physical values: powershell -File record.ps1
# Members are called by name through IDispatch: PowerShell's own lookup sees the default interface only.
$channels = 0, 1, 2, 3
$seconds = 2
$rate = 100

$adc = New-Object -ComObject Tessmark.Corvane
function Invoke-Member([string] $name, [Reflection.BindingFlags] $kind, [object[]] $values) {
    [System.__ComObject].InvokeMember($name, $kind, $null, $adc, $values)
}
function Get-Adc([string] $name, [object[]] $values) { , (Invoke-Member $name GetProperty $values) }
function Set-Adc([string] $name, $value) { [void](Invoke-Member $name SetProperty @(, $value)) }
function Invoke-Adc([string] $name) { Invoke-Member $name InvokeMethod @() }

if (-not (Invoke-Adc Test)) { Write-Error "No device: $(Get-Adc LastError)"; exit 1 }
$ranges = Get-Adc Ranges
"$(Get-Adc ADCName), $(Get-Adc ChannelsCount) channels, up to $(Get-Adc RateMax) Hz"
for ($index = 0; $index -lt (Get-Adc ChannelsCount); $index++) {
    "${index}: $(Get-Adc ChannelName $index), $($ranges[(Get-Adc ChannelRange $index)])"
}

Set-Adc InputChannels ([int16[]] $channels)
Set-Adc Rate ([single] $rate)
Set-Adc InputSizeData (2 * $seconds * $rate * $channels.Count)
if (-not (Invoke-Adc StartRecord)) { Write-Error "Not started: $(Get-Adc LastError)"; exit 1 }
Start-Sleep -Milliseconds (1000 * $seconds + 500)
[void](Invoke-Adc StopRecord)

# $data[column, kadr]; kadr 0 holds the channel numbers.
$data = Get-Adc InputData
"Kadrs: $($data.GetUpperBound(1)) at $(Get-Adc Rate) Hz"
for ($kadr = 1; $kadr -le [Math]::Min(5, $data.GetUpperBound(1)); $kadr++) {
    $line = for ($column = 0; $column -lt $channels.Count; $column++) {
        $channel = $data[$column, 0]
        $value = $data[$column, $kadr] / (Get-Adc ChannelUnitScale $channel) + (Get-Adc ChannelUnitOffset $channel)
        "{0:0.####} {1}" -f $value, (Get-Adc ChannelUnitName $channel)
    }
    $line -join "; "
}
