' korvex_tools.dll from a script host: every public control created by ProgID (and its .1
' ProgID), properties set and read back late-bound, the host's numbered errors caught with On Error
' Resume Next, and a bad value shown to change nothing. Prints "ok ..." or "FAIL ..." per check,
' "note ..." for what the host itself cannot do, and "checks N" at the end; script_host.py reads it.
Option Explicit

Dim checks, failures
checks = 0
failures = 0

Sub Check(what, got, expected)
    checks = checks + 1
    If got = expected Then
        WScript.Echo "ok " & what & " = " & Show(got)
    Else
        failures = failures + 1
        WScript.Echo "FAIL " & what & ": " & Show(got) & ", expected " & Show(expected)
    End If
End Sub

Function Show(value)
    If VarType(value) = vbString Then
        Show = """" & value & """"
    Else
        Show = CStr(value)
    End If
End Function

' A refused assignment: the error number it gave, and the value before and after it. (Wine's
' VBScript has no Eval or Execute, so each assignment is written out.) One per error number
' shows that the number reaches the script's Err; the server's checks (tests/win32/com) refuse
' every property's bad values.
Sub CheckRefused(what, number, expectedNumber, after, before)
    Check what & " error", number, expectedNumber
    Check what & " changed nothing", after, before
End Sub

' Creation by both ProgIDs; returns the object made by the first.
Function Create(name)
    Dim obj, versioned
    On Error Resume Next
    Set obj = CreateObject("Korvex_Tools." & name)
    Check "CreateObject Korvex_Tools." & name & " error", Err.Number, 0
    Err.Clear
    Set versioned = CreateObject("Korvex_Tools." & name & ".1")
    Check "CreateObject Korvex_Tools." & name & ".1 error", Err.Number, 0
    Err.Clear
    On Error GoTo 0
    Check name & " is an object", IsObject(obj), True
    Set Create = obj
End Function

Dim btn, lbl, frm, lnk, lin, ico, pic, number, before

Set btn = Create("Button")
btn.Caption = "Senden"
Check "Button.Caption", btn.Caption, "Senden"
btn.BorderStyle = 5
Check "Button.BorderStyle", btn.BorderStyle, 5
btn.ButtonColor = &HC0C0FF
Check "Button.ButtonColor", btn.ButtonColor, &HC0C0FF
btn.ButtonShow = 44
Check "Button.ButtonShow", btn.ButtonShow, 44
btn.OptionMode = 1
Check "Button.OptionMode", btn.OptionMode, 1
btn.Value = True
Check "Button.Value", btn.Value, True
Check "Button.Switched (read-only)", btn.Switched, 0
before = btn.MousePointer
On Error Resume Next
btn.MousePointer = 5000
number = Err.Number
Err.Clear
On Error GoTo 0
CheckRefused "Button.MousePointer = 5000", number, 380, btn.MousePointer, before
before = btn.BorderStyle
On Error Resume Next
btn.BorderStyle = "kein Stil"
number = Err.Number
Err.Clear
On Error GoTo 0
CheckRefused "Button.BorderStyle = ""kein Stil""", number, 13, btn.BorderStyle, before
before = btn.Switched
On Error Resume Next
btn.Switched = 1
number = Err.Number
Err.Clear
On Error GoTo 0
CheckRefused "Button.Switched = 1", number, 383, btn.Switched, before

Set lbl = Create("Label3D")
lbl.Caption = "Überschrift"
Check "Label3D.Caption", lbl.Caption, "Überschrift"
lbl.TextColor = &H800000
Check "Label3D.TextColor", lbl.TextColor, &H800000
lbl.Shadow = False
Check "Label3D.Shadow", lbl.Shadow, False
lbl.FontSize = 12
Check "Label3D.FontSize", lbl.FontSize, 12
before = lbl.xDist
On Error Resume Next
lbl.xDist = 40000
number = Err.Number
Err.Clear
On Error GoTo 0
CheckRefused "Label3D.xDist = 40000", number, 6, lbl.xDist, before

Set frm = Create("Frames")
frm.Caption = "Gruppe"
Check "Frames.Caption", frm.Caption, "Gruppe"
frm.BorderStyle = 3
Check "Frames.BorderStyle", frm.BorderStyle, 3
frm.BackColorF = &H8000000F
Check "Frames.BackColorF", frm.BackColorF, &H8000000F
Check "Frames.Font.Name is a name", Len(frm.Font.Name) > 0, True
On Error Resume Next
Set frm.Font = Nothing
number = Err.Number
Err.Clear
On Error GoTo 0
Check "Set Frames.Font = Nothing error", number, 380
Check "Frames.Font kept", IsObject(frm.Font), True

Set lnk = Create("Hyperlink")
lnk.AutoSizeH = False
lnk.Caption = "korvex"
Check "Hyperlink.Caption", lnk.Caption, "korvex"
lnk.Url = "about:blank"
Check "Hyperlink.Url", lnk.Url, "about:blank"
lnk.LinkColor = &HFF0000
Check "Hyperlink.LinkColor", lnk.LinkColor, &HFF0000

Set lin = Create("Line3D")
lin.BorderWidth = 3
Check "Line3D.BorderWidth", lin.BorderWidth, 3
lin.Orientation = 1
Check "Line3D.Orientation", lin.Orientation, 1

Set ico = Create("Icons")
Set pic = ico.Icon("0", "16", 21)
Check "Icons.Icon(0, 16, 21) is a picture", pic Is Nothing, False
Check "Icons.Icon picture width (HIMETRIC of 16 px)", pic.Width, 423
On Error Resume Next
Set pic = ico.Icon("keine Zahl", "16", 21)
number = Err.Number
Err.Clear
On Error GoTo 0
Check "Icons.Icon(""keine Zahl"", ...) error", number, 13

' Without a site a control is at run time (UserMode defaults to True): the hyperlink takes
' Clicked, which the designer refuses (387), and Refresh clears it.
On Error Resume Next
lnk.Clicked = True
number = Err.Number
Err.Clear
On Error GoTo 0
Check "Hyperlink.Clicked = True without a site: error", number, 0
Check "Hyperlink.Clicked", lnk.Clicked, True
lnk.Refresh
Check "Hyperlink.Clicked after Refresh", lnk.Clicked, False

' Methods, a property of a property's object, a picture handed from one control to another.
lin.DrawLine
btn.Refresh
btn.DrawRectB True
btn.NotFrmFocus True
Check "methods DrawLine, Refresh, DrawRectB, NotFrmFocus", "called", "called"
btn.Font.Bold = True
Check "Button.Font.Bold through the font object", btn.Font.Bold, True
Set pic = ico.Icon("1", "32", 5)
Check "Icons.Icon(1, 32, 5) is an icon (type 3)", pic.Type, 3
Check "Icons.Icon(1, 32, 5) width (HIMETRIC of 32 px)", pic.Width, 847
Set btn.PictureUp = pic
Check "Set Button.PictureUp = a picture", btn.PictureUp Is Nothing, False
Check "Button.PictureUp keeps its size", btn.PictureUp.Height, 847

' A name no control has: the host's own error.
On Error Resume Next
btn.NoSuchMember = 1
number = Err.Number
Err.Clear
On Error GoTo 0
Check "Button.NoSuchMember error", number, 438

' FlatButton stays private: the library offers it to no host.
On Error Resume Next
Set pic = CreateObject("Korvex_Tools.FlatButton")
number = Err.Number
Err.Clear
On Error GoTo 0
Check "CreateObject Korvex_Tools.FlatButton error", number, 429

WScript.Echo "checks " & checks & " failures " & failures
