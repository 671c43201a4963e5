' Objects in VBScript. An error that nobody expects ends the script, and its output with it.
For Each name In Split("CError CCardData CCardByteData CByteArrayData CCardFormatInfo " & _
    "CCardFormatEM CCardFormatHIDStandard CCardFormatBinary26 CCardFormat37Bits " & _
    "CCardFormatHIDCorp1000 CCardFormat34Bits CCardFormatUID32BIts CCardFormatLG " & _
    "CCardFormatWoori CCardFormatDongSeo CCard CCardTypes CCardType CCardFrame CCardMatch CCardMatches")
  WScript.Echo name, TypeName(CreateObject("Vardel." & name))
Next
Set facade = CreateObject("Vardel.CCard") : Set card = CreateObject("Vardel.CCardData")
card.CardType = 2 : card.CardSubType = 1 : card.Facility = "100" : card.CardID = 12345
Set raw = facade.MakeCardData(card)
WScript.Echo "bytes", raw.CardArrDataByIndex(0), raw.CardArrDataByIndex(3), raw.ErrNumber
card.Facility = "256" : Set raw = facade.MakeCardData(card)
WScript.Echo "content error", raw.ErrNumber, raw.ErrName, facade.ErrNumber

' Variables arrive by reference, of other types than the parameters'.
cardType = 2 : subType = "3" : index = 1.0 : text = "65535"
WScript.Echo "format", facade.CardFormat(cardType, subType).CardName
WScript.Echo "valid", facade.CardFormat(2, 1).CCardFormatInfo_IsCardIDValid(text)
raw.InitCardData cardType : raw.CardArrDataByIndex(index) = index
WScript.Echo "initialized", cardType, raw.CardType, raw.CardArrDataByIndex(1)
raw.InitCardData
WScript.Echo "omitted", raw.ErrNumber, raw.ErrName, raw.CardArrDataByIndex(1)

WScript.Echo "same format", facade.CardFormat(2, 1) Is facade.CardFormatByCode(513)
Set other = CreateObject("Vardel.CByteArrayData") : Set shared = CreateObject("Vardel.CError")
Set raw.Error = shared : Set other.Error = shared : raw.MakeErr 5, "shared"
WScript.Echo "one error", other.ErrNumber, shared.ErrName, other.Error Is raw.Error
Set raw.Error = Nothing
WScript.Echo "no error", raw.Error Is Nothing

Set lg = CreateObject("Vardel.CCardFormatLG") : Set frame = CreateObject("Vardel.CCardFrame")
card.CardType = 3 : card.CardSubType = 3
card.Facility = "12" : card.CardID = "345" : card.Revision = "7"
record = lg.MakeCardData(card)
raw.CardDataStruct = record : frame.CardDataStruct = raw.CardDataStruct
Set read = lg.CCardFormatInfo_AnalyzeCardData(frame)
WScript.Echo "record", VarType(record), raw.CardArrDataByIndex(15), read.CardID, frame.RawCardHex

Set types = CreateObject("Vardel.CCardTypes") : Set entry = CreateObject("Vardel.CCardType")
For Each code In types.CardTypeCodes : codes = codes & " " & code : Next
WScript.Echo "codes" & codes
all = types.AllCardTypes : types.CardTypeName(513) = "My card"
For Each item In all : WScript.Echo item.DefaultShortName, item.CardType, item.CardSubType : Next
WScript.Echo "put", types.CardTypeName("513"), types.CardTypeByCode(513) Is all(3)
WScript.Echo "add", types.Add(entry, 257), types.Add(Nothing, 516), types.Add(entry, 515)
WScript.Echo "added", types.CardTypeByCode(515) Is entry, types.Count
