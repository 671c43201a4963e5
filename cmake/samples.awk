# Takes a document's samples apart: each block of C++, VBScript or JScript becomes
# FOLDER/LANGUAGE_sample.EXTENSION, and the text block that has to follow it, which is what the sample
# prints, FOLDER/LANGUAGE_sample.txt.
#
#   awk -v folder=FOLDER -f samples.awk DOCUMENT
BEGIN { extensions["cpp"] = "cpp"; extensions["vbscript"] = "vbs"; extensions["javascript"] = "js" }
/^```$/ { close(out); out = ""; next }
out { print > out; next }
/^```text$/ && language { out = folder "/" language "_sample.txt"; language = ""; next }
/^```/ && language { exit }
/^```/ && substr($0, 4) in extensions {
  language = substr($0, 4)
  out = folder "/" language "_sample." extensions[language]
}
END {
  if (language) print "no text follows the sample in " language > "/dev/stderr"
  exit language != ""
}
