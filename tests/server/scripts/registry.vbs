' The registry of card types.
Dim types, entry, all, item, text
Set types = CreateObject("Vardel.CCardTypes")
Equal "codes", "/256/257/512/513/514/517/768/769/773", List(types.CardTypeCodes)
all = types.AllCardTypes
For Each item In all
  text = text & item.DefaultShortName & "," & item.CardType & "," & item.CardSubType & ";"
Next
Equal "entries", "EM,1,0;EM STD,1,1;HID,2,0;HID STD,2,1;HID BIN,2,2;HID 34Bits,2,5;MI,3,0;MI UID 32Bits,3,1;MI DongSeo 64Bits,3,5;", text
types.ShortName("513") = "mine"
types.CardTypeName(513) = "My card"
Equal "put", "/mine/My card/HID STD", List(Array(types.ShortName("513"), all(3).TypeName, types.GetDefaultShortName(2, 1)))
Equal "let", "/0/-1/", List(Array(types.LetShortName(2, 1, "x"), types.LetCardTypeName(2, 3, "x"), types.ErrName))
Equal "miss by text", "//-1", List(Array(types.DefaultName("0257"), types.ErrNumber))
Equal "miss by type", "/False/-1", List(Array(types.CardTypeByType(2, 3).IsAvailable, types.ErrNumber))
Equal "hit by type", "/257/0", List(Array(types.CardTypeByType(1, 1).TypeCode, types.ErrNumber))
Equal "miss by code", "/True/-1/Unknown Card Type", List(Array(types.CardTypeByCode(515).IsAvailable, types.ErrNumber, types.ErrName))
Equal "same entry", True, (types.CardTypeByCode(513) Is types.CardTypeByType(2, 1)) And (types.CardTypeByCode(513) Is all(3))
Set entry = CreateObject("Vardel.CCardType")
Equal "duplicate", "/False/-1", List(Array(types.Add(entry, 257), types.ErrNumber))
Equal "added", "/True/0/10", List(Array(types.Add(entry, 515), types.ErrNumber, types.Count))
Equal "added entry", True, types.CardTypeByCode(515) Is entry
entry.ShortName = "KEICO"
Equal "its name", "KEICO", types.GetShortName(2, 3)
Equal "no entry", "/False/-1", List(Array(types.Add(Nothing, 516), types.ErrNumber))
text = types.IsExisted(9000000, 1) : Fault "type code", 6, "Overflow", "CCardTypes"
Finish
