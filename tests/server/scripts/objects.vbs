' The classes by name, conversions, error pairs, faults and identity.
Dim name, made
For Each name In Array("CError", "CCardData", "CCardByteData", "CByteArrayData", "CCardFormatInfo", _
    "CCardFormatEM", "CCardFormatHIDStandard", "CCardFormatBinary26", "CCardFormat37Bits", _
    "CCardFormatHIDCorp1000", "CCardFormat34Bits", "CCardFormatUID32BIts", "CCardFormatLG", _
    "CCardFormatWoori", "CCardFormatDongSeo", "CCard", "CCardTypes", "CCardType")
  Set made = CreateObject("Vardel." & name)
  Equal "new " & name, "0 ", made.ErrNumber & " " & made.ErrName
Next
Equal "new CCardFrame", 0, CreateObject("Vardel.CCardFrame").FrameCardType

Dim facade, card, raw, read
Set facade = CreateObject("Vardel.CCard") : Set card = CreateObject("Vardel.CCardData")
card.CardType = 2 : card.CardSubType = 1 : card.Facility = "100" : card.CardID = 12345
Set raw = facade.MakeCardData(card)
Equal "bytes", "/115/96/200/2/0", List(Array(raw.CardArrDataByIndex(0), raw.CardArrDataByIndex(1), _
  raw.CardArrDataByIndex(2), raw.CardArrDataByIndex(3), raw.CardArrDataByIndex(32)))
Equal "raw card", "/2/1/32/0", List(Array(raw.CardType, raw.CardSubType, raw.CardDataByteCount, raw.ErrNumber))
Equal "checks", "/3/-1/0", List(Array(facade.CardTypeCount, CInt(facade.IsExisted(2, 3)), CInt(facade.IsCardType(2, 3))))

' Variables arrive by reference, of other types than the parameters'.
Dim cardType, subType, index, text
cardType = 2 : subType = "3" : index = 1.0 : text = "65535"
Equal "variables", "Keico", facade.CardFormat(cardType, subType).CardName
Equal "enumeration", False, facade.IsCardType(cardType, subType)
Equal "text", True, facade.CardFormat(2, 1).CCardFormatInfo_IsCardIDValid(text)
raw.InitCardData cardType
raw.CardArrDataByIndex(index) = index
Equal "by reference", "/2/2/0/1", List(Array(cardType, raw.CardType, raw.CardArrDataByIndex(0), raw.CardArrDataByIndex(1)))
raw.InitCardData
Equal "omitted type", "/-1/Incorrect Card Type/1", List(Array(raw.ErrNumber, raw.ErrName, raw.CardArrDataByIndex(1)))

' Error pairs.
card.Facility = "256"
Set raw = facade.MakeCardData(card)
Equal "content error", "/-1/Incorrect Facility Code/0", List(Array(raw.ErrNumber, raw.ErrName, facade.ErrNumber))
card.Facility = "100"
Equal "stays", -1, facade.MakeCardData(card).ErrNumber
facade.CardFormat(2, 1).CCardFormatInfo_InitErr
Equal "cleared", 0, facade.MakeCardData(card).ErrNumber
card.CardSubType = 3
Equal "unknown type", "/0/-1/Unknown Card Type", List(Array(facade.MakeCardData(card).ErrNumber, facade.ErrNumber, facade.ErrName))

' Faults.
card.CardSubType = 2
Set raw = facade.MakeCardData(card) : Fault "full binary", 9, "Subscript out of range", "CCard"
Set read = facade.CardFormat(3, 3) : Fault "not registered", 424, "Object required", "CCard"
text = facade.IsSmartCardData("1") : Fault "smart card data", 424, "Object required", "CCard"
text = facade.IsExisted(9000000, 1) : Fault "type code", 6, "Overflow", "CCard"
CreateObject("Vardel.CCardFrame").RawCardHex = "7360C8XY"
Fault "hexadecimal text", 13, "Type mismatch", "CCardFrame"
Set raw = facade.MakeCardData(Nothing) : Fault "no card", 91, "Object variable not set", "CCard"
Set read = facade.CardFormat(2, 1).AnalyzeCardData(Nothing)
Fault "no frame", 91, "Object variable not set", "CCardFormatHIDStandard"
Set raw = facade.MakeCardData(facade) : Fails "wrong class", 13
card.CardSubType = 256 : Fails "no byte", 6

' Identity.
Dim shared, other
Equal "same format", True, facade.CardFormat(2, 1) Is facade.CardFormatByCode(513)
Equal "another facade's", False, facade.CardFormat(2, 1) Is CreateObject("Vardel.CCard").CardFormat(2, 1)
Set other = CreateObject("Vardel.CByteArrayData")
Set shared = CreateObject("Vardel.CError")
Set raw.Error = shared : Set other.Error = shared
raw.MakeErr 5, "shared"
Equal "shared error", "/5/shared/True", List(Array(other.ErrNumber, shared.ErrName, other.Error Is raw.Error))
Set raw.Error = Nothing
Equal "no error object", True, raw.Error Is Nothing
text = raw.ErrName : Fault "pair without an error object", 91, "Object variable not set", "CCardByteData"
Finish
