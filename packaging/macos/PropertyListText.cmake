# A text as it is written between two tags of a property list.
function(property_list_text result text)
  string(REPLACE "&" "&amp;" text "${text}")
  string(REPLACE "<" "&lt;" text "${text}")
  string(REPLACE ">" "&gt;" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()
