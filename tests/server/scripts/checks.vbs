' What every VBScript test begins with. A statement that fails is passed over: the next check tells.
Option Explicit
On Error Resume Next
Dim checks, failures
Sub Require(what, passed)
  checks = checks + 1
  If passed Then Exit Sub
  failures = failures + 1
  WScript.Echo what & " (error " & Err.Number & ", " & Err.Description & ", " & Err.Source & ")"
End Sub
Sub Equal(what, expected, actual)
  Require what & ": " & actual & " instead of " & expected, Err.Number = 0 And expected = actual
  Err.Clear
End Sub
Sub Fails(what, number)
  Require what, Err.Number = number
  Err.Clear
End Sub
Sub Fault(what, number, description, className)
  Require what & " in " & className, Err.Description = description And Err.Source = "Vardel." & className
  Fails what, number
End Sub
Function List(values)
  Dim value
  For Each value In values : List = List & "/" & value : Next
End Function
Sub Finish
  Require "at the end", Err.Number = 0
  If failures = 0 Then WScript.Echo "PASSED " & checks & " checks"
  If failures > 0 Then WScript.Echo "FAILED " & failures & " of " & checks
End Sub
