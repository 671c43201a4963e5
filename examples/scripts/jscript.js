// What differs in JScript: exceptions, null, literals and prototypes as frames, any Unicode text.
var facade = new ActiveXObject("Vardel.CCard"), card = new ActiveXObject("Vardel.CCardData");
var frame = new ActiveXObject("Vardel.CCardFrame"), lg = new ActiveXObject("Vardel.CCardFormatLG");
function fault(call) {
  try { call(); } catch (e) { WScript.Echo((e.number & 0xFFFF) + " " + e.description); }
}
var names = ("CError CCardData CCardByteData CByteArrayData CCardFormatInfo CCardFormatEM " +
    "CCardFormatHIDStandard CCardFormatBinary26 CCardFormat37Bits CCardFormatHIDCorp1000 " +
    "CCardFormat34Bits CCardFormatUID32BIts CCardFormatLG CCardFormatWoori CCardFormatDongSeo " +
    "CCard CCardTypes CCardType CCardFrame CCardMatch CCardMatches").split(" "), made = 0;
for (var i in names) if (typeof new ActiveXObject("Vardel." + names[i]) === "object") ++made;
WScript.Echo("classes", made);
card.CardType = 2; card.CardSubType = 5; card.Facility = "100"; card.CardID = 12345;
var raw = facade.MakeCardData(card), held = {record: facade.CardFormat(2, 5).MakeCardData(card)};
WScript.Echo("bytes", raw.CardArrDataByIndex(1), card.CardID, facade.IsExisted(2, 4) === true);
raw.CardDataStruct = held.record; raw.CardArrDataByIndex(31) = 7;
WScript.Echo("record", raw.CardArrDataByIndex(0), raw.CardArrDataByIndex(31));
raw.InitCardData();
WScript.Echo("omitted type", raw.ErrName);

frame.RawCardHex = "72C8600000";
function Frame() { this.FrameCardSubType = 5; this.RawCardBytes = frame.RawCardBytes; }
Frame.prototype.FrameCardType = 2;
WScript.Echo("inherited", facade.AnalyzeCardData(new Frame()).CardID);
var literal = {FrameCardType: 0, FrameCardSubType: 0, IsEMFrame: 1, RawCardHex: "7360C8020000"};
frame.RawCardHex = literal.RawCardHex; literal.RawCardBytes = frame.RawCardBytes;
WScript.Echo("EM", facade.AnalyzeCardData(literal).Facility);
literal.RawCardBytes = [1, 2, 3];
fault(function () { facade.AnalyzeCardData(literal); });
delete literal.IsEMFrame;
fault(function () { facade.AnalyzeCardData(literal); });
fault(function () { facade.AnalyzeCardData(null); });
fault(function () { facade.CardFormatByCode(771); });

card.Facility = "70000";
WScript.Echo("content error", facade.MakeCardData(card).ErrNumber, facade.MakeCardData(card).ErrName);
var types = new ActiveXObject("Vardel.CCardTypes"), entry = new ActiveXObject("Vardel.CCardType");
WScript.Echo("registry", types.Add(entry, 515), types.Count, types.GetDefaultName(2, 1), types.ErrNumber);
entry.ShortName = "mine";
WScript.Echo("entry", types.ShortName("515"), types.CardTypeByCode(513).TypeCode);

var text = "\u4e2d\u0000\ud83d\ude00";
card.CardType = 3; card.CardSubType = 3; card.Facility = text;
WScript.Echo("any text", card.Facility === text);
fault(function () { lg.CCardFormatInfo_MakeCardData(card); });
card.Facility = "\u20ac";
raw.CardDataStruct = lg.MakeCardData(card);
WScript.Echo("euro", raw.CardArrDataByIndex(5));
