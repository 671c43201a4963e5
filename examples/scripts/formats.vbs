' All formats without a record: a frame takes what a format makes of a card, and gives the text.
Set card = CreateObject("Vardel.CCardData") : Set frame = CreateObject("Vardel.CCardFrame")
card.Facility = "12" : card.CardID = "345" : card.Revision = "07"
For Each name In Split("EM HIDStandard 37Bits HIDCorp1000 34Bits UID32BIts LG Woori DongSeo")
  Set format = CreateObject("Vardel.CCardFormat" & name)
  card.CardType = format.CardType : card.CardSubType = format.CardSubType
  frame.MakeCardData format, card
  Set read = format.AnalyzeCardData(frame)
  WScript.Echo name, frame.RawCardHex, read.Facility & "/" & read.CardID & "/" & read.Revision, _
      format.ErrNumber, read.ErrNumber
Next

' HID full binary only decodes; a fault leaves the frame as it is.
Set format = CreateObject("Vardel.CCardFormatBinary26") : text = frame.RawCardHex
On Error Resume Next
frame.MakeCardData format, card : WScript.Echo Err.Number, Err.Source, frame.RawCardHex = text
Err.Clear : frame.MakeCardData Nothing, card : WScript.Echo Err.Number, Err.Source
On Error GoTo 0
frame.RawCardHex = "7360C80200000000"
WScript.Echo "Binary26", format.AnalyzeCardData(frame).CardID

' A content error is recorded on the format, and the frame's record is a blank one.
Set format = CreateObject("Vardel.CCardFormatEM") : card.Facility = "256"
frame.MakeCardData format, card
WScript.Echo format.ErrNumber, format.ErrName, frame.RawCardHex

' Bytes in the place of a record: those of a frame, or an array of the script's own.
Set raw = CreateObject("Vardel.CCardByteData") : Dim bytes(31)
frame.RawCardHex = "0102" & String(60, "F") : raw.CardDataStruct = frame.RawCardBytes
bytes(31) = 7 : frame.CardDataStruct = bytes
WScript.Echo raw.CardArrDataByIndex(1), raw.CardArrDataByIndex(31), Right(frame.RawCardHex, 4)
