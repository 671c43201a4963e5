# Takes a document's samples apart: each block of a language listed here becomes
# FOLDER/LANGUAGE_sample.EXTENSION, and a text block that follows it in the same section, which is what
# the sample prints, FOLDER/LANGUAGE_sample.txt.
#
#   awk -v folder=FOLDER -f samples.awk DOCUMENT
BEGIN {
  extensions["cpp"] = "cpp"; extensions["vbscript"] = "vbs"; extensions["javascript"] = "js"
  extensions["vba"] = "bas"; extensions["csharp"] = "cs"; extensions["python"] = "py"
  extensions["powershell"] = "ps1"
}
/^```$/ { close(out); out = ""; next }
out { print > out; next }
/^#/ { language = "" }
/^```text$/ && language in extensions { out = folder "/" language "_sample.txt"; language = ""; next }
/^```/ { language = substr($0, 4) }
/^```/ && language in extensions { out = folder "/" language "_sample." extensions[language] }
