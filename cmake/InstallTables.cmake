# Lays the tables and keys that ship into an installation, beside what its users made of them: a part
# of cmake --install, run for every prefix and DESTDIR.
#   TEVRON_CONFIG_SOURCE   the folder that they ship from
#   CMAKE_INSTALL_PREFIX   its "Config" takes them
# "Config/.shipped" names what was laid last, as sha256sum does. A file that is still that is replaced,
# or removed when it ships no more; one that was edited, or is a link, stays, and what ships now lies
# beside it as NAME.new. A file is replaced as a whole and keeps its mode and owner; a new one has the
# mode that it has where it ships from. "Config/site" is made once and belongs to the users.
cmake_minimum_required(VERSION 3.25)

set(folder $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/Config)
set(manifest ${folder}/.shipped)
set(begun_manifest ${folder}/.shipping) # what an installation that was interrupted may have laid
set(incoming ${folder}/.incoming)

function(tevron_read_lines result file)
  set(lines)
  if(EXISTS ${file})
    file(STRINGS ${file} lines)
  endif()
  set(${result} ${lines} PARENT_SCOPE)
endfunction()

# Whether the file is there, and is NAME as one of the `lines` has it.
function(tevron_is_one_of result file name lines)
  set(${result} FALSE PARENT_SCOPE)
  if(EXISTS ${file} AND NOT IS_SYMLINK ${file})
    file(SHA256 ${file} hash)
    if("${hash}  ${name}" IN_LIST lines)
      set(${result} TRUE PARENT_SCOPE)
    endif()
  endif()
endfunction()

# Puts a copy of `source` in the place of `target`, for whoever may read `like`, where that exists.
function(tevron_lay source target like)
  get_filename_component(name ${source} NAME)
  get_filename_component(target_folder ${target} DIRECTORY)
  file(COPY ${source} DESTINATION ${incoming})
  if(CMAKE_HOST_UNIX AND EXISTS ${like})
    execute_process(
      COMMAND cp --attributes-only --preserve=mode,ownership ${like} ${incoming}/${name}
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(MAKE_DIRECTORY ${target_folder})
  file(RENAME ${incoming}/${name} ${target})
endfunction()

tevron_read_lines(laid ${manifest})
tevron_read_lines(begun ${begun_manifest})
file(GLOB_RECURSE names RELATIVE ${TEVRON_CONFIG_SOURCE}
  ${TEVRON_CONFIG_SOURCE}/*.csv ${TEVRON_CONFIG_SOURCE}/*.ini)
list(FILTER names EXCLUDE REGEX "^site/")
set(ships)
foreach(name IN LISTS names)
  file(SHA256 ${TEVRON_CONFIG_SOURCE}/${name} hash)
  list(APPEND ships "${hash}  ${name}")
endforeach()
list(JOIN ships "\n" ships_text)

file(REMOVE_RECURSE ${incoming})
file(MAKE_DIRECTORY ${incoming})
list(APPEND begun ${ships})
list(JOIN begun "\n" begun_text)
file(WRITE ${begun_manifest} "${begun_text}\n")

set(known ${laid} ${begun})
foreach(name line IN ZIP_LISTS names ships)
  set(source ${TEVRON_CONFIG_SOURCE}/${name})
  set(target ${folder}/${name})
  tevron_is_one_of(is_unedited ${target} ${name} "${known}")
  if(is_unedited OR NOT (EXISTS ${target} OR IS_SYMLINK ${target}))
    tevron_is_one_of(is_current ${target} ${name} "${line}")
    if(is_current)
      message(STATUS "Up-to-date: ${target}")
    else()
      message(STATUS "Installing: ${target}")
      tevron_lay(${source} ${target} ${target})
    endif()
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES ${CMAKE_INSTALL_PREFIX}/Config/${name})
    # What was laid beside it while it was an edited one.
    tevron_is_one_of(is_ours ${target}.new ${name} "${known}")
    if(is_ours)
      file(REMOVE ${target}.new)
    endif()
  elseif(line IN_LIST laid)
    message(STATUS "Kept: ${target} (edited)")
  else()
    tevron_lay(${source} ${target}.new ${target})
    message(STATUS "Kept: ${target} (edited); what ships now is ${name}.new beside it")
  endif()
endforeach()

list(TRANSFORM known REPLACE "^[0-9a-f]+  " "" OUTPUT_VARIABLE gone)
list(REMOVE_DUPLICATES gone)
list(REMOVE_ITEM gone ${names})
foreach(name IN LISTS gone)
  foreach(file ${folder}/${name} ${folder}/${name}.new)
    tevron_is_one_of(is_ours ${file} ${name} "${known}")
    if(is_ours)
      message(STATUS "Removing: ${file}, which ships no more")
      file(REMOVE ${file})
    elseif(EXISTS ${file})
      message(STATUS "Kept: ${file} (edited), which ships no more")
    endif()
  endforeach()
endforeach()

if(NOT (EXISTS ${folder}/site OR IS_SYMLINK ${folder}/site))
  tevron_lay(${TEVRON_CONFIG_SOURCE}/site_README.txt ${folder}/site/README.txt "")
endif()

file(WRITE ${incoming}/manifest "${ships_text}\n")
file(RENAME ${incoming}/manifest ${manifest})
file(REMOVE ${begun_manifest})
file(REMOVE_RECURSE ${incoming})
