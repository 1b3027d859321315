' A badge-design host written in VBScript, run by cscript: it creates the control by its ProgID,
' gives it the host's settings, opens a layout of the work folder, fetches the project's fields,
' sets the application boundaries, saves, and prints what it reads, one line a step.
' Usage: cscript //nologo host.vbs FOLDER, where FOLDER holds copies of examples\layouts\Visitors16K.IIF
' and Visitors16K.CHP and of examples\project\Sample.ini; the layout there is saved again.
Option Explicit

Dim work, control, result
work = WScript.Arguments(0)

Sub Show(step, value)
    WScript.Echo step & " " & value
End Sub

Function Shorter(path)
    Shorter = Replace(path, work, "<work>")
End Function

Set control = CreateObject("Kestrin.iClass")
Show "Created", TypeName(control) <> "Nothing"
control.ProjectFile = work & "\Sample.ini"
control.IifDirectory = work
control.PellmarkINI = work & "\Pellmark.ini"
control.EncodePath = work
control.AppName = "Script host"
Show "ProjectFile", Shorter(control.ProjectFile)
Show "IifDirectory", Shorter(control.IifDirectory)
Show "PellmarkINI", Shorter(control.PellmarkINI)
Show "EncodePath", Shorter(control.EncodePath)
Show "AppName", control.AppName
Show "CLessLayoutEntered", control.CLessLayoutEntered

' The reader's two raised errors reach the script as run-time errors of the control.
On Error Resume Next
result = control.OpenLayout("")
Show "OpenLayout("""")", "[" & Err.Source & "] [" & Err.Description & "]"
Err.Clear
result = control.OpenLayout(work & "\Missing.IIF")
Show "OpenLayout(Missing.IIF)", "[" & Err.Source & "] [" & Err.Description & "]"
Err.Clear
On Error GoTo 0

Show "OpenLayout", control.OpenLayout(work & "\Visitors16K.IIF")
Show "LayoutFile", Shorter(control.LayoutFile)
Show "Saved", control.Saved
Show "CLessLayoutEntered", control.CLessLayoutEntered
Show "FetchDBFields", control.FetchDBFields
control.SetAppBoundaries "20|21|22|23|24|25|26|27"
Show "SaveLayout", control.SaveLayout
Show "Saved", control.Saved
Show "SelectedGrid", control.SelectedGrid
' The bridge's probe name "1" is served silently: an empty text, no object.
Show "GetPropertyValue(1)", "[" & control.GetPropertyValue("1") & "]"
Show "GetObjectProperty(1) Is Nothing", control.GetObjectProperty("1") Is Nothing
control.SetObjectProperty "1", Nothing
control.CallGenericFunction "1"
