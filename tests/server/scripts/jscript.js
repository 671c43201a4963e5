// What differs in JScript: null, object literals as frames, records in objects, any Unicode text.
var facade = new ActiveXObject("Vardel.CCard"), card = new ActiveXObject("Vardel.CCardData");
card.CardType = 2; card.CardSubType = 5; card.Facility = "100"; card.CardID = 12345;
var raw = facade.MakeCardData(card), format = facade.CardFormat(2, 5), held = {};
equal("byte and text", "200 12345", raw.CardArrDataByIndex(1) + " " + card.CardID);
equal("boolean", true, facade.IsExisted(2, 4));
held.record = format.CCardFormatInfo_MakeCardData(card);
raw.CardDataStruct = held.record;
raw.CardArrDataByIndex(31) = 7;
equal("record", "114 7", raw.CardArrDataByIndex(0) + " " + raw.CardArrDataByIndex(31));
raw.InitCardData();
equal("omitted type", "Incorrect Card Type", raw.ErrName);

function Frame() { this.FrameCardSubType = 5; this.RawCardBytes = frame.RawCardBytes; }
Frame.prototype.FrameCardType = 2;
var frame = new ActiveXObject("Vardel.CCardFrame");
frame.RawCardHex = "72C8600000";
equal("inherited member", "12345", facade.AnalyzeCardData(new Frame()).CardID);
var literal = {FrameCardType: 0, FrameCardSubType: 0, IsEMFrame: 1, RawCardBytes: [1, 2, 3], RawCardHex: "7360C8020000"};
fault("script array", 13, "Type mismatch", function () { facade.AnalyzeCardData(literal); });
frame.RawCardHex = literal.RawCardHex;
literal.RawCardBytes = frame.RawCardBytes;
equal("EM", "100", facade.AnalyzeCardData(literal).Facility);
delete literal.IsEMFrame;
fault("lacks", 438, "The frame object has no member IsEMFrame", function () { facade.AnalyzeCardData(literal); });

fault("null card", 91, "Object variable not set", function () { facade.MakeCardData(null); });
fault("null frame", 91, "Object variable not set", function () { facade.AnalyzeCardData(null); });
fault("unregistered", 424, "Object required", function () { facade.CardFormatByCode(771); });
var lg = new ActiveXObject("Vardel.CCardFormatLG");
card.CardType = 3; card.CardSubType = 3; card.Facility = "\u4e2d\u0000\ud83d\ude00";
equal("any text", "\u4e2d\u0000\ud83d\ude00", card.Facility);
fault("no byte for it", 6, "Overflow", function () { lg.CCardFormatInfo_MakeCardData(card); });
card.Facility = "\u20ac";
raw.CardDataStruct = lg.MakeCardData(card);
equal("euro", 128, raw.CardArrDataByIndex(5));
WScript.Echo(failures ? "FAILED " + failures + " of " + checks : "PASSED " + checks + " checks");
