# braxcfg_layer(NAME [QT] [DEPS targets...])
# A layer is a static library made of every .cpp/.h/.ui below its folder.
# Layers link into the plug-in (so they are position independent and keep
# their symbols hidden) and into the tool.
function(braxcfg_layer name)
  cmake_parse_arguments(L "QT" "EXCLUDE" "DEPS" ${ARGN})
  file(GLOB_RECURSE srcs CONFIGURE_DEPENDS
       ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  set(target braxcfg_${name})
  list(FILTER srcs INCLUDE REGEX "\\.cpp$")
  if(L_EXCLUDE)
    list(FILTER srcs EXCLUDE REGEX "${L_EXCLUDE}")
  endif()
  if(srcs)
    file(GLOB_RECURSE hdrs CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    if(L_EXCLUDE)
      list(FILTER hdrs EXCLUDE REGEX "${L_EXCLUDE}")
    endif()
    add_library(${target} STATIC ${srcs} ${hdrs})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include
                               ${PROJECT_BINARY_DIR}/generated)
    target_link_libraries(${target} PUBLIC ${L_DEPS})
    if(L_QT)
      file(GLOB uis CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/res/*.ui)
      target_sources(${target} PRIVATE ${uis})
      set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON
                            AUTOUIC_SEARCH_PATHS ${PROJECT_SOURCE_DIR}/res)
      target_link_libraries(${target} PUBLIC Qt6::Widgets)
    endif()
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include
                               ${PROJECT_BINARY_DIR}/generated)
    target_link_libraries(${target} INTERFACE ${L_DEPS})
  endif()
endfunction()

# braxcfg_test(NAME DEPS targets... [QT] [EXCLUDE regex])
# One GoogleTest program per folder of tests/; every .cpp in it is a part
# (but those EXCLUDE matches, for a build that lacks what they test).
function(braxcfg_test name)
  cmake_parse_arguments(T "QT" "EXCLUDE" "DEPS;LABELS" ${ARGN})
  file(GLOB srcs CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(T_EXCLUDE)
    list(FILTER srcs EXCLUDE REGEX "${T_EXCLUDE}")
  endif()
  if(NOT srcs)
    return()
  endif()
  add_executable(test_${name} ${srcs})
  target_link_libraries(test_${name} PRIVATE ${T_DEPS} braxcfg_test_support GTest::gtest GTest::gmock Threads::Threads)
  if(NOT T_QT)
    # Widget tests share tests/common/qt_test_main.cpp, which creates the QApplication.
    target_link_libraries(test_${name} PRIVATE GTest::gtest_main)
  endif()
  if(T_QT)
    target_sources(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/common/qt_test_main.cpp)
    set_target_properties(test_${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(test_${name} PRIVATE Qt6::Test Qt6::Widgets)
  endif()
  target_compile_definitions(test_${name} PRIVATE
    BRAXCFG_SOURCE_DIR="${PROJECT_SOURCE_DIR}" BRAXCFG_BINARY_DIR="${PROJECT_BINARY_DIR}")
  include(GoogleTest)
  gtest_discover_tests(test_${name} DISCOVERY_MODE PRE_TEST
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" LABELS "${name};${T_LABELS}"
    SKIP_RETURN_CODE 77)
endfunction()
