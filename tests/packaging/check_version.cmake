# The newest entries of the package's changelog and of its metadata are those of the project's version.
file(STRINGS ${PACKAGING}/changelog.in changelog LIMIT_COUNT 1)
if(NOT changelog MATCHES "^tremorledger \\(${VERSION}\\) ")
    message(FATAL_ERROR "changelog.in begins with \"${changelog}\", the version is ${VERSION}")
endif()
file(READ ${PACKAGING}/org.tremorledger.tremorledger.metainfo.xml metadata)
if(NOT metadata MATCHES "<releases>[ \n]*<release version=\"${VERSION}\"")
    message(FATAL_ERROR "the metadata's first release is not ${VERSION}")
endif()
