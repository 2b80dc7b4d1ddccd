# What an installation holds, below any prefix. The program finds the rest by its own place, so that
# the whole may be moved:
#
#   bin/swiftgate
#   lib/swiftgate/lib/        the libraries, which nobody else links. Right below lib/ or in a folder
#                             of it a package would have the system's linker told of them
#   lib/swiftgate/modules/    what the host loads
#   share/swiftgate/          the documents, whose function pages are the help; support/: programs
#   share/doc/swiftgate/      licences, changes, examples
#   share/man, and the completions of bash and zsh
set(private_libraries lib/swiftgate/lib)
set(documents share/swiftgate)
set(papers share/doc/swiftgate)

set(libraries swiftgate-host swiftgate-geometry swiftgate-step swiftgate-graphics swiftgate-ui
    swiftgate-grid swiftgate-browse swiftgate-standards swiftgate-support swiftgate-solids)
set(modules SwiftGate2017 qn_qn-solid2017)
# The second place is the package's: where /proc is not mounted, a program has no place of its own.
set_target_properties(swiftgate PROPERTIES
  INSTALL_RPATH "\$ORIGIN/../${private_libraries};/usr/${private_libraries}")
set_target_properties(${libraries} PROPERTIES INSTALL_RPATH "\$ORIGIN")
set_target_properties(${modules} PROPERTIES INSTALL_RPATH "\$ORIGIN/../lib")
install(TARGETS swiftgate RUNTIME DESTINATION bin)
install(TARGETS ${libraries} LIBRARY DESTINATION ${private_libraries})
install(TARGETS ${modules} LIBRARY DESTINATION lib/swiftgate/modules)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${documents}
        FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.svg)
# The guide's links to the examples lead to where these are installed.
file(READ ${PROJECT_SOURCE_DIR}/docs/guide.md guide)
string(REPLACE "](../examples/" "](../doc/swiftgate/examples/" guide "${guide}")
file(WRITE ${CMAKE_BINARY_DIR}/generated/guide.md "${guide}")
install(FILES ${CMAKE_BINARY_DIR}/generated/guide.md DESTINATION ${documents})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/share/support DESTINATION ${documents})
# The sample of a module needs the sources beside it to be built.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${papers}
        PATTERN CMakeLists.txt EXCLUDE PATTERN marshalling EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright DESTINATION ${papers})

# The manual page and the completions tell the options that the program itself tells.
set(generated ${CMAKE_BINARY_DIR}/generated)
set(paperwork ${generated}/swiftgate.1.gz ${generated}/changelog.gz ${generated}/swiftgate.bash
    ${generated}/_swiftgate)
set(papers_source ${PROJECT_SOURCE_DIR}/packaging)
add_custom_command(OUTPUT ${paperwork}
  COMMAND Python3::Interpreter -B ${papers_source}/paperwork.py $<TARGET_FILE:swiftgate> ${generated}
  DEPENDS swiftgate ${papers_source}/paperwork.py ${papers_source}/changelog
          ${papers_source}/swiftgate.1.in ${papers_source}/swiftgate.bash.in
          ${papers_source}/swiftgate.zsh.in
  VERBATIM)
add_custom_target(paperwork ALL DEPENDS ${paperwork})
install(FILES ${generated}/swiftgate.1.gz DESTINATION share/man/man1)
install(FILES ${generated}/changelog.gz DESTINATION ${papers})
install(FILES ${generated}/swiftgate.bash DESTINATION share/bash-completion/completions
        RENAME swiftgate)
# Debian's zsh looks into the first below /usr, and into the second below /usr/local.
foreach(folder vendor-completions site-functions)
  install(FILES ${generated}/_swiftgate DESTINATION share/zsh/${folder})
endforeach()
