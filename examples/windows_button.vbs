' A Korvex_Tools.Button from a script: register the library first (see INSTALL.txt), then run
'   cscript //nologo windows_button.vbs
' The button is made without a form, so the script cannot click it; a group button that latches
' raises Group all the same, which the Knopf_Group sub below answers.
Option Explicit

Dim knopf

Sub Knopf_Group()
    WScript.Echo "Group: the other buttons of the group would be released here"
End Sub

Set knopf = CreateObject("Korvex_Tools.Button")
knopf.Caption = "Links"
knopf.ButtonShow = 44          ' LEDgreen
knopf.OptionMode = 2           ' optGroup
WScript.Echo "Caption: " & knopf.Caption & ", OptionMode: " & knopf.OptionMode

' A value the property does not take is refused with a numbered error and changes nothing.
On Error Resume Next
knopf.MousePointer = 5000
WScript.Echo "MousePointer = 5000: error " & Err.Number & " (" & Err.Description & "), still " & knopf.MousePointer
Err.Clear

WScript.ConnectObject knopf, "Knopf_"
If Err.Number <> 0 Then WScript.Echo "This script host cannot connect events (error " & Err.Number & ")"
Err.Clear
On Error GoTo 0

knopf.Value = True
WScript.Echo "Value: " & knopf.Value
