# panel_add_test(NAME DISPLAY LIBRARY...): builds NAME.cpp and runs it on that display as a test with
# the label ${panel_test_label}. Each gets its own simulated panel, so it may write to real paths.
function(panel_add_test name display)
    panel_add_test_program(${name} ${ARGN})
    panel_register_test(${name} ${display})
endfunction()

# panel_add_test_program(NAME LIBRARY...): builds NAME.cpp, which includes NAME.moc.
function(panel_add_test_program name)
    qt_generate_moc(${name}.cpp ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc)
    add_executable(${name} ${name}.cpp ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc)
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
    target_link_libraries(${name} PRIVATE ${ARGN} panel_testsupport panel_options)
    panel_reuse_headers(${name} ${ARGN})
endfunction()

# panel_reuse_headers(NAME LIBRARY...): lets a test program that links these libraries use the
# precompiled headers. They require the same Qt modules, so other programs do without them.
function(panel_reuse_headers name)
    if("${ARGN}" MATCHES "^panel_(core|doctorsupport|hostile)$|^mkpackage$|^doctor$|^guard$")
        target_precompile_headers(${name} REUSE_FROM panel_testsupport)
    elseif("${ARGN}" MATCHES "panel_(ui|widgetsupport|vanishingstick)$")
        target_precompile_headers(${name} REUSE_FROM panel_widgetsupport)
    endif()
endfunction()

# panel_register_test(NAME DISPLAY ARGUMENT...): runs the program NAME on that display as a test.
function(panel_register_test name display)
    set(share)
    # Freed memory is not used again until 16 MB more are freed. Each process that a test starts
    # copies its page tables: with the sanitizer's default of 256 MB, tst_hostilepackages takes 210 s
    # instead of 116 s.
    set(environment "ASAN_OPTIONS=quarantine_size_mb=16"
        "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/leaks.supp:print_suppressions=0")
    if(PANEL_COVERAGE) # a folder outside the panel for the counters of this test alone
        set(counters ${CMAKE_BINARY_DIR}/coverage/${name})
        file(MAKE_DIRECTORY ${counters})
        set(share --share ${counters})
        string(REGEX MATCHALL "/" depth ${CMAKE_BINARY_DIR})
        list(LENGTH depth depth)
        list(APPEND environment GCOV_PREFIX=${counters} GCOV_PREFIX_STRIP=${depth})
    endif()
    add_test(NAME ${name}
        COMMAND ${CMAKE_SOURCE_DIR}/simulator/panel --build ${CMAKE_BINARY_DIR}
                --display ${display} ${share} -- $<TARGET_FILE:${name}> ${ARGN})
    set_tests_properties(${name} PROPERTIES LABELS ${panel_test_label} TIMEOUT 240 PROCESSORS 2
        COST "${panel_test_cost_${panel_test_label}}"
        ENVIRONMENT "${environment}")
endfunction()

# panel_add_script_test(NAME SECONDS COMMAND...): runs a script, which starts any panels itself.
function(panel_add_script_test name limit)
    add_test(NAME ${name} COMMAND ${ARGN})
    set_tests_properties(${name} PROPERTIES LABELS ${panel_test_label} TIMEOUT ${limit} PROCESSORS 2
        COST "${panel_test_cost_${panel_test_label}}")
endfunction()
