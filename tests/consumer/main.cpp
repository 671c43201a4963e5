#include <vardel/core/byte_array.h>
#include <vardel/core/byte_array_data.h>
#include <vardel/core/card_frame.h>
#include <vardel/core/enumerations.h>
#include <vardel/core/host_fault.h>
#include <vardel/facade/card.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/card_formats.h>

int main() {
  vardel::CCard facade;
  vardel::CCardData card;
  card.CardType = vardel::CARD_HID;
  card.CardSubType = vardel::CARD_SUB_HID_STD;
  card.Facility = "1";
  card.CardID = "1";
  vardel::CCardFrame frame(vardel::CARD_HID, vardel::CARD_SUB_HID_STD, "");
  frame.CardDataStruct(facade.MakeCardData(card).CardDataStruct);
  return facade.AnalyzeCardData(frame).CardID == "00001" ? 0 : 1;
}
