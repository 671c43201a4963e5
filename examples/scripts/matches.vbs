' Cards of an unknown kind are held to a reader: which formats can they be of?
Set matches = CreateObject("Vardel.CCardMatches") : Set frame = CreateObject("Vardel.CCardFrame")
For Each text In Split("7360C8020000 B202C8020000 63A8C9000000 8338C9020000 000000000000")
  frame.RawCardHex = text : matches.Add frame
Next
WScript.Echo matches.ReadCount, "reads,", matches.BlankCount, "blank"
For index = 0 To matches.Count - 1
  Set match = matches.Item(index)
  parity = "no parity" : If match.HasParity Then parity = "parity holds in " & match.ParityHolds
  WScript.Echo match.ClassName, match.CardType & "/" & match.CardSubType & ":", parity & ",", _
      match.UnusedSet, "unused,", match.BeyondLimits, "beyond limits"
Next

' The cards that the best of them makes of the reads. What is held stays as it is.
Set best = matches.Item(0) : WScript.Echo "same object", best Is matches.Item(0)
matches.Clear
For index = 0 To best.CardCount - 1
  WScript.Echo best.CardData(index).Facility & "/" & best.CardData(index).CardID
Next
On Error Resume Next
Set best = matches.Item(0) : WScript.Echo Err.Number, Err.Source, matches.Count
