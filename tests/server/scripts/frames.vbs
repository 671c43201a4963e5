' Frames: CCardFrame and a host's own objects.
Class HostFrame
  Public FrameCardSubType : Public IsEMFrame
  Public bytes : Public hex
  Public Property Get FrameCardType : FrameCardType = "2" : End Property
  Public Property Get RawCardBytes : RawCardBytes = bytes : End Property
  Public Property Get rawcardhex : rawcardhex = hex : End Property
End Class
Class RaisingFrame
  Public number
  Public Property Get FrameCardType : Err.Raise number, "host", "no card in the field" : End Property
End Class
Class LackingFrame
  Public Property Get FrameCardType : FrameCardType = 2 : End Property
End Class

Dim facade, frame, host, read, bytes, number, value
Set facade = CreateObject("Vardel.CCard")
Set frame = CreateObject("Vardel.CCardFrame")
Equal "new frame", "/0/0/False/", List(Array(frame.FrameCardType, frame.FrameCardSubType, frame.IsEMFrame, frame.RawCardHex))
frame.FrameCardType = 2 : frame.FrameCardSubType = 1 : frame.RawCardHex = "7360C8020000"
bytes = frame.RawCardBytes
Equal "bytes", 8209, VarType(bytes)
Set read = facade.AnalyzeCardData(frame)
Equal "read", "/100/12345/", List(Array(read.Facility, read.CardID, read.Revision))
frame.FrameCardType = 0
Equal "unknown type", "//0", List(Array(facade.AnalyzeCardData(frame).Facility, facade.AnalyzeCardData(frame).ErrNumber))
frame.IsEMFrame = True
Equal "as EM", "100", facade.AnalyzeCardData(frame).Facility
frame.RawCardHex = "7360C802000" : Fault "odd text", 13, "Type mismatch", "CCardFrame"
Equal "unchanged", "/7360C8020000/100", List(Array(frame.RawCardHex, facade.AnalyzeCardData(frame).Facility))

' The length from the bytes, the values from the text; members in any case of letters.
Set host = New HostFrame
host.FrameCardSubType = 1 : host.IsEMFrame = False : host.bytes = bytes : host.hex = "7360c8020000 and more"
Set read = facade.AnalyzeCardData(host)
Equal "host's frame", "/100/12345/", List(Array(read.Facility, read.CardID, read.Revision))
For Each value In Array("7360C802", "73XYC8020000", "")
  host.hex = value
  Set read = facade.AnalyzeCardData(host) : Fault "bad text", 13, "Type mismatch", "CCard"
Next
For Each value In Array("text", 5, Empty, Array(115, 96, 200, 2, 0, 0))
  host.bytes = value : host.FrameCardSubType = 1
  Set read = facade.AnalyzeCardData(host) : Fault "no bytes", 13, "Type mismatch", "CCard"
  host.FrameCardSubType = 5
  Set read = facade.AnalyzeCardData(host)
  Equal "no bytes, 34 bits", "///0", List(Array(read.Facility, read.CardID, read.ErrNumber))
Next
host.bytes = CreateObject("Vardel.CCardFrame").RawCardBytes
Equal "empty bytes, 34 bits", "//0", List(Array(facade.AnalyzeCardData(host).Facility, facade.AnalyzeCardData(host).ErrNumber))
host.FrameCardSubType = 1
Equal "empty bytes", "Too Small Card Data", facade.AnalyzeCardData(host).ErrName
host.FrameCardSubType = "one"
Set read = facade.AnalyzeCardData(host) : Fault "sub-type", 13, "Type mismatch", "CCard"

' What a frame raises arrives with its number.
Set host = New RaisingFrame
For Each number In Array(9, 1234, 65535, vbObjectError + 513)
  host.number = number
  Set read = facade.AnalyzeCardData(host) : Fails "raised " & number, number
Next
Set read = facade.AnalyzeCardData(New LackingFrame)
Fault "lacks a member", 438, "The frame object has no member FrameCardSubType", "CCard"
Set read = facade.AnalyzeCardData(facade) : Fails "no frame", 438
Set read = facade.AnalyzeCardData(Nothing) : Fault "nothing", 91, "Object variable not set", "CCard"
Finish
