# A script of its own, so that no command line of the build holds the name under which the host looks
# for running cores.
file(MAKE_DIRECTORY ${BUNDLE_DIR}/bin)
file(COPY_FILE ${SAMPLE_CORE} ${BUNDLE_DIR}/bin/zant ONLY_IF_DIFFERENT)
