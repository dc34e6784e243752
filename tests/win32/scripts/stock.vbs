' The script host on an object Wine provides: what controls.vbs relies on (late binding, numbered
' errors under On Error Resume Next, On Error GoTo 0, a sub's arguments) works before any of it is
' blamed on the library.
Option Explicit

Dim failures, dict, number
failures = 0

Sub Check(what, got, expected)
    If got = expected Then
        WScript.Echo "ok " & what
    Else
        failures = failures + 1
        WScript.Echo "FAIL " & what & ": " & got & ", expected " & expected
    End If
End Sub

Set dict = CreateObject("Scripting.Dictionary")
dict.Add "a", 1
Check "Count", dict.Count, 1
On Error Resume Next
dict.Add "a", 2
number = Err.Number
Err.Clear
On Error GoTo 0
Check "Add of a key it has: error", number, 457
On Error Resume Next
dict.NoSuchMember = 1
number = Err.Number
Err.Clear
On Error GoTo 0
Check "NoSuchMember: error", number, 438
Check "unchanged", dict.Item("a"), 1
WScript.Echo "checks done failures " & failures
