' Records two seconds from four channels and prints physical values: cscript //nologo record.vbs
Option Explicit
Const Channels = 4, Seconds = 2, Rate = 100

Dim adc, ranges, index, data, count, kadr, column, line, gaps, gap
Set adc = CreateObject("Tessmark.Corvane")
adc.Interactive = False ' no windows: with several crates, name one with CrateSerial
If Not adc.Test Then
    WScript.Echo "No device: " & adc.LastError
    WScript.Quit 1
End If

ranges = adc.Ranges
WScript.Echo adc.ADCName & ", " & adc.ChannelsCount & " channels, up to " & adc.RateMax & " Hz"
For index = 0 To adc.ChannelsCount - 1
    WScript.Echo index & ": " & adc.ChannelName(index) & ", " & ranges(adc.ChannelRange(index))
Next

adc.InputChannels = Array(0, 1, 2, 3)
adc.Rate = Rate
adc.InputSizeData = 2 * Seconds * Rate * Channels
If Not adc.StartRecord Then
    WScript.Echo "Not started: " & adc.LastError
    WScript.Quit 1
End If
Do While adc.Busy And adc.InputCountKadrs < Seconds * Rate
    Pause
Loop
adc.StopRecord

' data(column, kadr); kadr 0 holds the channel numbers.
data = adc.InputData
count = UBound(data, 2)
WScript.Echo "Kadrs: " & count & " at " & adc.Rate & " Hz"
For kadr = 1 To count
    If kadr <= 5 Then
        line = ""
        For column = 0 To UBound(data, 1)
            index = data(column, 0)
            line = line & Physical(data(column, kadr), index) & " " & adc.ChannelUnitName(index) & "; "
        Next
        WScript.Echo line
    End If
Next

' gaps(0 to 3, gap): module, first kadr, kadrs, reason. Samples of these kadrs were filled in, not measured.
gaps = adc.Gaps
For gap = 0 To UBound(gaps, 2)
    WScript.Echo "Not measured: module " & gaps(0, gap) & ", " & gaps(2, gap) & " kadrs from " & gaps(1, gap) & _
        ", reason " & gaps(3, gap)
Next

' Wine's script host can't sleep; polling alone does there.
Sub Pause
    On Error Resume Next
    WScript.Sleep 50
End Sub

Function Physical(sample, channel)
    Physical = Int((sample / adc.ChannelUnitScale(channel) + adc.ChannelUnitOffset(channel)) * 10000 + 0.5) / 10000
End Function
