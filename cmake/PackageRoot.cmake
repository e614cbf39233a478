# Runs inside of cpack, between staging and packing: strips the programs, compresses the manual pages and adds the documents
# that Debian expects.
set(usr ${CPACK_TEMPORARY_DIRECTORY}/usr)
set(doc ${usr}/share/doc/${CPACK_PACKAGE_NAME})
set(debian ${CPACK_ORRINVALE_SOURCE}/data/debian)

execute_process(COMMAND ${CPACK_ORRINVALE_STRIP} --strip-all --remove-section=.comment --remove-section=.note
    ${usr}/bin/orrinvale ${usr}/bin/orrinvale-cli ${usr}/libexec/orrinvale/orrinvale-helper
    ${usr}/libexec/orrinvale/orrinvale-preview
  COMMAND_ERROR_IS_FATAL ANY)
file(MAKE_DIRECTORY ${doc} ${usr}/share/lintian/overrides)
file(COPY ${debian}/copyright DESTINATION ${doc})
configure_file(${debian}/lintian-overrides ${usr}/share/lintian/overrides/${CPACK_PACKAGE_NAME} COPYONLY)

# The date in the form of mail: noon, so that it is the same day nearly everywhere.
execute_process(COMMAND date --utc --rfc-email --date "${CPACK_ORRINVALE_DATE} 12:00 UTC"
  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
file(WRITE ${doc}/changelog.Debian "${CPACK_PACKAGE_NAME} (${version}) unstable; urgency=medium

  * Packaged for Debian.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
configure_file(${CPACK_ORRINVALE_SOURCE}/CHANGELOG.md ${doc}/changelog COPYONLY)

file(GLOB manual_pages ${usr}/share/man/man1/*.1)
execute_process(COMMAND gzip --force --best --no-name ${doc}/changelog.Debian ${doc}/changelog ${manual_pages}
  COMMAND_ERROR_IS_FATAL ANY)
file(GLOB compressed ${doc}/* ${usr}/share/man/man1/*.gz ${usr}/share/lintian/overrides/*)
file(CHMOD ${compressed} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
file(GLOB_RECURSE folders LIST_DIRECTORIES true ${usr}/*)
foreach(folder ${usr} ${folders})
  if(IS_DIRECTORY ${folder})
    file(CHMOD ${folder} PERMISSIONS
      OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()
