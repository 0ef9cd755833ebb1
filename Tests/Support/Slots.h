// The host's services by slot number and name. All hosts of the tests use this one list.
#ifndef AVSK_TESTS_SLOTS_H
#define AVSK_TESTS_SLOTS_H

// clang-format off
#define AVSK_TEST_SLOTS(X)                                                                                             \
    X(2, getScreenSize) X(3, getMouseLocation) X(4, setGraphicsState) X(5, bindTexture2d)                              \
    X(6, generateTextureNumbers) X(7, getTexture) X(8, worldToLocal) X(9, localToWorld)                                \
    X(10, drawTranslucentDarkBox) X(11, drawString) X(12, drawNumber) X(13, getFontDimensions)                         \
    X(14, getElapsedTime) X(15, readCameraPosition) X(16, drawAircraft) X(17, loadAircraftModel)                       \
    X(18, getAircraftModel) X(19, countAircraft) X(20, placeUserAtAirport) X(21, simulateKeyPress)                     \
    X(22, speakString) X(23, commandKeyStroke) X(24, commandButton) X(25, getSystemPath) X(26, getPrefsPath)           \
    X(27, getVersions) X(28, getLanguage) X(29, debugString) X(30, createMenu) X(31, appendMenuItem)                   \
    X(32, setMenuItemName) X(33, destroyMenu) X(34, reinitUsersPlane) X(35, reloadScenery) X(36, getFirstNavAid)       \
    X(37, getNextNavAid) X(38, findFirstNavAidOfType) X(39, findLastNavAidOfType) X(40, findNavAid)                    \
    X(41, getNavAidInfo) X(42, countFMSEntries) X(43, getDisplayedFMSEntry) X(44, getDestinationFMSEntry)              \
    X(45, setDisplayedFMSEntry) X(46, setDestinationFMSEntry) X(47, getFMSEntryInfo) X(48, setFMSEntryInfo)            \
    X(49, setFMSEntryLatLon) X(50, clearFMSEntry) X(51, getGPSDestinationType) X(52, getGPSDestination)                \
    X(53, showMessage) X(54, showProgress) X(55, findCommand) X(56, beginCommand) X(57, continueCommand)               \
    X(58, endCommand) X(59, createProbe) X(60, probeTerrain) X(61, findSymbol) X(62, measureString)                    \
    X(63, removeMenuItem) X(64, loadObject) X(65, drawObject) X(66, unloadObject) X(67, lookupObjects)                 \
    X(68, loadDataFile) X(69, saveDataFile) X(70, loadObjectAsync) X(71, receiveMessage)
// clang-format on

#endif
