# The client library of google_breakpad as the target breakpad_client: the system's where there is one,
# else compiled from the sources that the scripts put under build/ (require_breakpad in scripts/lib.sh).
# Finds MINIDUMP_STACKWALK and DUMP_SYMS, its tools that read what the library wrote.
set(ORBIX_BREAKPAD_FOLDER ${PROJECT_SOURCE_DIR}/build/breakpad-0.26.0 CACHE PATH
    "The unpacked npm package minidump, which carries google_breakpad")
if(CMAKE_HOST_SYSTEM_PROCESSOR STREQUAL "x86_64")
    find_program(MINIDUMP_STACKWALK minidump_stackwalk HINTS ${ORBIX_BREAKPAD_FOLDER}/bin/linux-x64)
    find_program(DUMP_SYMS dump_syms HINTS ${ORBIX_BREAKPAD_FOLDER}/bin/linux-x64)
else()
    find_program(MINIDUMP_STACKWALK minidump_stackwalk)
    find_program(DUMP_SYMS dump_syms)
endif()

pkg_check_modules(BREAKPAD QUIET IMPORTED_TARGET breakpad-client)
if(BREAKPAD_FOUND)
    target_compile_definitions(PkgConfig::BREAKPAD INTERFACE __STDC_FORMAT_MACROS)
    add_library(breakpad_client ALIAS PkgConfig::BREAKPAD)
    return()
endif()

set(breakpad_root ${ORBIX_BREAKPAD_FOLDER}/deps/breakpad/src)
if(NOT EXISTS ${breakpad_root}/client/linux/handler/exception_handler.cc)
    message(FATAL_ERROR "google_breakpad is neither installed nor in ${ORBIX_BREAKPAD_FOLDER}. "
                        "bash -c 'source scripts/lib.sh; require_breakpad' fetches it.")
endif()

set(breakpad_sources
    client/linux/crash_generation/crash_generation_client.cc
    client/linux/crash_generation/crash_generation_server.cc
    client/linux/dump_writer_common/thread_info.cc
    client/linux/dump_writer_common/ucontext_reader.cc
    client/linux/handler/exception_handler.cc
    client/linux/handler/minidump_descriptor.cc
    client/linux/log/log.cc
    client/linux/microdump_writer/microdump_writer.cc
    client/linux/minidump_writer/linux_core_dumper.cc
    client/linux/minidump_writer/linux_dumper.cc
    client/linux/minidump_writer/linux_ptrace_dumper.cc
    client/linux/minidump_writer/minidump_writer.cc
    client/linux/minidump_writer/pe_file.cc
    client/minidump_file_writer.cc
    common/convert_UTF.cc
    common/md5.cc
    common/string_conversion.cc
    common/linux/elf_core_dump.cc
    common/linux/elfutils.cc
    common/linux/file_id.cc
    common/linux/guid_creator.cc
    common/linux/linux_libc_support.cc
    common/linux/memory_mapped_file.cc
    common/linux/safe_readlink.cc)
list(TRANSFORM breakpad_sources PREPEND ${breakpad_root}/)
add_library(breakpad_client STATIC ${breakpad_sources})
set_target_properties(breakpad_client PROPERTIES AUTOMOC OFF)
# Its own warnings are not ours.
target_include_directories(breakpad_client SYSTEM PUBLIC ${breakpad_root} ${ORBIX_BREAKPAD_FOLDER}/deps)
target_compile_definitions(breakpad_client
    PRIVATE HAVE_GETCONTEXT HAVE_GETRANDOM
    PUBLIC __STDC_FORMAT_MACROS) # its headers insist on it
target_compile_options(breakpad_client PRIVATE -w)
