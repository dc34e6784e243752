' Events of korvex_tools.dll in a script host: WScript.ConnectObject joins a Button's event
' interface to the Knopf_ subs; a group button that latches through its Value property raises
' Group without any window or input. A host whose ConnectObject is not implemented (Wine's
' cscript answers 445) is noted, not failed: our own container checks the events instead.
Option Explicit

Dim btn, groups, number
groups = 0

Sub Knopf_Group()
    groups = groups + 1
    WScript.Echo "event Knopf.Group"
End Sub

Set btn = CreateObject("Korvex_Tools.Button")
btn.OptionMode = 2
On Error Resume Next
WScript.ConnectObject btn, "Knopf_"
number = Err.Number
Err.Clear
On Error GoTo 0
If number = 445 Then
    WScript.Echo "note WScript.ConnectObject is not implemented by this host (error 445)"
ElseIf number <> 0 Then
    WScript.Echo "FAIL WScript.ConnectObject error " & number
Else
    btn.Value = True
    If groups = 1 Then
        WScript.Echo "ok Group raised once by Value = True"
    Else
        WScript.Echo "FAIL Group raised " & groups & " times by Value = True"
    End If
    btn.Value = False
    btn.Value = True
    If groups = 2 Then
        WScript.Echo "ok Group raised again after Value = False, True"
    Else
        WScript.Echo "FAIL Group raised " & groups & " times after Value = False, True"
    End If
    WScript.DisconnectObject btn
End If
WScript.Echo "checks done"
