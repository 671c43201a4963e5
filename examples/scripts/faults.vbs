' Frames of the script's own, and faults: Tell prints what the statement before it came to.
Class HostFrame
  Public FrameCardSubType : Public IsEMFrame : Public RawCardBytes : Public rawcardhex
  Public Property Get FrameCardType : FrameCardType = "2" : End Property
End Class
Class RaisingFrame
  Public Property Get FrameCardType : Err.Raise 1234, "host", "no card here" : End Property
End Class
Class NoFrame
End Class
Sub Tell(what)
  WScript.Echo Err.Number, what & ":", Err.Description, "in", Err.Source
  Err.Clear
End Sub

Set facade = CreateObject("Vardel.CCard") : Set card = CreateObject("Vardel.CCardData")
Set frame = CreateObject("Vardel.CCardFrame") : Set host = New HostFrame
host.FrameCardSubType = 1 : host.RawCardBytes = frame.RawCardBytes
WScript.Echo "empty array", VarType(host.RawCardBytes), facade.AnalyzeCardData(host).ErrName
frame.RawCardHex = "7360C8020000"
host.RawCardBytes = frame.RawCardBytes : host.rawcardhex = "7360c8020000 and more"
Set read = facade.AnalyzeCardData(host)
WScript.Echo "own frame", read.Facility, read.CardID

On Error Resume Next
card.CardType = 2 : card.CardSubType = 2 : card.Facility = "100" : card.CardID = 12345
facade.MakeCardData card : Tell "full binary"
facade.CardFormat 3, 3 : Tell "not registered"
read = facade.IsExisted(9000000, 1) : Tell "type code"
frame.RawCardHex = "7360C8XY" : Tell "hexadecimal text"
facade.CardFormat(2, 1).AnalyzeCardData Nothing : Tell "no frame"
facade.MakeCardData facade : Tell "wrong class"
Set raw = CreateObject("Vardel.CCardByteData") : Set raw.Error = Nothing
WScript.Echo raw.ErrName : Tell "no error object"
raw.CardDataStruct = "text" : Tell "no record"
host.RawCardBytes = "text" : facade.AnalyzeCardData host : Tell "text for bytes"
facade.AnalyzeCardData New RaisingFrame : WScript.Echo Err.Number, "raised" : Err.Clear
facade.AnalyzeCardData New NoFrame : Tell "lacks a member"
