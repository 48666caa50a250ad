# The packages. Component Folder is the self-contained program folder, which a plain `cmake --install`
# gives as well; component System is what the .deb lays below /usr; CPackLayouts.cmake
# hands them out.

set(TREMOR_MAINTAINER "TremorLedger developers <tremorledger@example.org>" CACHE STRING
    "Who answers for the packages, as NAME <ADDRESS>")

set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(documents ${PROJECT_BINARY_DIR}/packaging)
set(icons ${packaging}/icons/hicolor)

# The notices of what is bundled stand at the end of the maps engine.
get_property(engine GLOBAL PROPERTY TREMOR_MAPS_ENGINE)
add_custom_command(
    OUTPUT ${documents}/copyright
    COMMAND sh -c "{ cat \"$1\"; sed -e '1,/^[/][*]$/d' -e '/^[*][/]$/d' \"$2\"; } >\"$3\"" --
        ${packaging}/copyright ${engine} ${documents}/copyright
    DEPENDS ${packaging}/copyright ${engine}
    VERBATIM)
set(package_documents ${documents}/copyright)
foreach(document changelog tremorledger.1)
    configure_file(${packaging}/${document}.in ${documents}/${document} @ONLY)
    add_custom_command(
        OUTPUT ${documents}/${document}.gz
        COMMAND gzip -9nkf ${documents}/${document}
        DEPENDS ${documents}/${document}
        VERBATIM)
    list(APPEND package_documents ${documents}/${document}.gz)
endforeach()
add_custom_target(package_documents ALL DEPENDS ${package_documents})
add_dependencies(package_documents tremor_maps_engine)

function(install_system)
    install(${ARGV} COMPONENT System EXCLUDE_FROM_ALL)
endfunction()
install_system(TARGETS TremorLedger RUNTIME DESTINATION lib/tremorledger)
install_system(PROGRAMS ${packaging}/tremorledger DESTINATION bin)
install_system(DIRECTORY ${PROJECT_SOURCE_DIR}/share/ DESTINATION share/tremorledger)
install_system(DIRECTORY ${icons} DESTINATION share/icons)
install_system(FILES ${packaging}/tremorledger.desktop DESTINATION share/applications)
install_system(FILES ${packaging}/org.tremorledger.tremorledger.metainfo.xml DESTINATION share/metainfo)
install_system(FILES ${documents}/tremorledger.1.gz DESTINATION share/man/man1)
install_system(FILES ${documents}/copyright ${documents}/changelog.gz DESTINATION share/doc/tremorledger)
# Beside the program in the .tar.gz.
install(FILES ${documents}/copyright DESTINATION . COMPONENT Notices EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/CPackLayouts.cmake)
set(CPACK_PACKAGE_NAME tremorledger)
set(CPACK_PACKAGE_FILE_NAME tremorledger-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_CONTACT ${TREMOR_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "collects earthquake catalogues and shows them on maps")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What no library shows.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "ca-certificates, fonts-dejavu-core | fonts-liberation")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"For the operator of a seismic network or a civil-protection room: polls the
event services of INGV, USGS and EMSC and the folders of a local locator, keeps
the events in one SQLite file, shows them in a table and on maps that need
neither a key nor the Internet, and reports new ones by sound, mail, Pagerlink
and Telegram.")
include(CPack)
