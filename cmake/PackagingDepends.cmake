# Read by CPack before it packs: the packages whose libraries the program and its modules need, found by
# dpkg-shlibdeps. CPack can ask it too, but then takes the modules for libraries of the whole system, and adds
# scripts to the package that run ldconfig for nothing.
execute_process(
    COMMAND dpkg-shlibdeps -O ${CPACK_ORVANE_BINARIES}
    WORKING_DIRECTORY "${CPACK_ORVANE_FOLDER}"
    RESULT_VARIABLE status
    OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_DEPENDS
    ERROR_VARIABLE trouble
    OUTPUT_STRIP_TRAILING_WHITESPACE
)
if(NOT status EQUAL 0 OR NOT CPACK_DEBIAN_PACKAGE_DEPENDS MATCHES "^shlibs:Depends=[^\n]+$")
    message(FATAL_ERROR "dpkg-shlibdeps (${status}): ${trouble}${CPACK_DEBIAN_PACKAGE_DEPENDS}")
endif()
string(REPLACE "shlibs:Depends=" "" CPACK_DEBIAN_PACKAGE_DEPENDS "${CPACK_DEBIAN_PACKAGE_DEPENDS}")
