' Records, LG and Woori, and the two kinds of names of the format classes.
Dim card, raw, frame, lg, woori, record, read
Set card = CreateObject("Vardel.CCardData") : Set raw = CreateObject("Vardel.CCardByteData")
Set lg = CreateObject("Vardel.CCardFormatLG") : Set woori = CreateObject("Vardel.CCardFormatWoori")
Set frame = CreateObject("Vardel.CCardFrame")
card.CardType = 3 : card.CardSubType = 3 : card.Facility = "12" : card.CardID = "345" : card.Revision = "7"
raw.CardDataStruct = lg.CCardFormatInfo_MakeCardData(card)
Equal "LG", "/49/50/55", List(Array(raw.CardArrDataByIndex(4), raw.CardArrDataByIndex(5), raw.CardArrDataByIndex(15)))
record = lg.MakeCardData(card)
Set raw = CreateObject("Vardel.CCardByteData")
raw.CardDataStruct = record
Equal "variable", "/36/55", List(Array(VarType(record), raw.CardArrDataByIndex(15)))
frame.CardDataStruct = raw.CardDataStruct
Equal "frame", "30303030313230303030303334353037" & String(32, "0"), frame.RawCardHex
Set read = lg.CCardFormatInfo_AnalyzeCardData(frame)
Equal "LG read", "/000012/00000345/07/0", List(Array(read.Facility, read.CardID, read.Revision, read.CardType))
card.CardSubType = 4 : card.Facility = "7"
frame.CardDataStruct = woori.CCardFormatInfo_MakeCardData(card)
Set read = woori.AnalyzeCardData(frame)
Equal "Woori read", "/7/345          /7 ", List(Array(read.Facility, read.CardID, read.Revision))
raw.CardDataStruct = "no record" : Fails "no record", 13
lg.MaxFacility = 5
Equal "both names", 5, lg.CCardFormatInfo_MaxFacility
lg.CCardFormatInfo_MaxFacility = 6 : Fails "read-only under this name", 438
Finish
