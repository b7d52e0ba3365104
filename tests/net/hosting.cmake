find_package(Qt5 ${QT_MINIMUM} REQUIRED COMPONENTS Network)

# The hosting service, for tests of the client and of the scene.
add_library(orb_hosting_server STATIC HostingServer.cpp HostingServer.h)
target_include_directories(orb_hosting_server PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(orb_hosting_server PUBLIC Qt5::Network PRIVATE orb_build_options)

foreach(test CredentialScrambler HostingReply VideosListModel)
    orb_add_test(tst_${test} LABEL unit SOURCES tst_${test}.cpp LINK orb_net)
endforeach()

orb_add_test(tst_OrbHostingManager LABEL unit
    SOURCES tst_OrbHostingManager.cpp LINK orb_net orb_hosting_server)
