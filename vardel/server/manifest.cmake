# cmake -DGUIDS=FILE -DTEMPLATE=FILE -DOUTPUT=FILE -Darchitecture=NAME -P manifest.cmake
#
# Fills in the side-by-side manifest from the GUIDs that the IDL compiler writes: a line for every class,
# and for every interface one that lets it cross apartments, marshalled by the type library.
file(READ ${GUIDS} guids)
string(REGEX MATCHALL "(LIBID|CLSID|IID)_[A-Za-z0-9_]+, *0x[0-9A-Fa-fx, ]+" rows "${guids}")
foreach(row IN LISTS rows)
  string(REGEX MATCH "([A-Z]+)_([A-Za-z0-9_]+), *(.*)" matched "${row}")
  set(kind ${CMAKE_MATCH_1})
  set(name ${CMAKE_MATCH_2})
  string(REGEX REPLACE "0x|[, ]" "" digits "${CMAKE_MATCH_3}")
  string(REGEX REPLACE "^(........)(....)(....)(....)(............)$" "{\\1-\\2-\\3-\\4-\\5}" id "${digits}")
  if(kind STREQUAL LIBID)
    set(library ${id})
  elseif(kind STREQUAL CLSID)
    string(APPEND classes "    <comClass clsid=\"${id}\" progid=\"Vardel.${name}\""
      " threadingModel=\"Apartment\" tlbid=\"${library}\">"
      "<progid>Vardel.${name}.1</progid></comClass>\n")
  else()
    string(APPEND interfaces "  <comInterfaceExternalProxyStub iid=\"${id}\" name=\"${name}\""
      " tlbid=\"${library}\" proxyStubClsid32=\"{00020424-0000-0000-C000-000000000046}\"/>\n")
  endif()
endforeach()
file(READ ${TEMPLATE} manifest)
string(CONFIGURE "${manifest}" manifest @ONLY)
file(WRITE ${OUTPUT} "${manifest}")
