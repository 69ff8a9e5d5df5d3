#include "NSError+KBXKeys.h"

#include "tests/support/Text.h"

namespace kbx {
namespace {

// Errors are read by other programs: the texts and numbers are promises.
TEST(NSErrorKBXKeys, KeysAreTheirPublishedTexts) {
  struct Case {
    NSString* key;
    const char* expected;
  };
  for (auto [key, expected] :
       {Case{KBXErrorDomain(), "KBXErrorDomain"},
        {fileErrorKey(), "KBXFile"},
        {lineErrorKey(), "KBXLine"},
        {functionErrorKey(), "KBXFunction"},
        {codeStringErrorKey(), "KBXCodeString"},
        {failingObjectErrorKey(), "KBXFailingObject"},
        {stackFramesErrorKey(), "KBXStackFrames"},
        {underlyingReasonErrorKey(), "KBXUnderlyingReason"},
        {expectedTypeErrorKey(), "KBXExpectedType"},
        {actualTypeErrorKey(), "KBXActualType"},
        {argumentsErrorKey(), "KBXArguments"},
        {failingKeyErrorKey(), "KBXFailingKey"},
        {actualValueErrorKey(), "KBXActualValue"},
        {expectedValueErrorKey(), "KBXExpectedValue"},
        {inputObjectErrorKey(), "KBXInputObject"},
        {stringErrorKey(), "KBXString"},
        {stringEncodingErrorKey(), "KBXStringEncoding"},
        {shortFailureReasonErrorKey(), "KBXShortFailureReason"},
        {isMacAppStoreVersionErrorKey(), "KBXIsMacAppStoreVersion"},
        {isInAppSandboxErrorKey(), "KBXIsInAppSandbox"},
        {destinationFilePathErrorKey(), "NSDestinationFilePath"},
        {NSFilePathErrorKey(), "NSFilePath"},
        {NSURLErrorKey(), "NSURL"},
        {NSUnderlyingErrorKey(), "NSUnderlyingError"},
        {NSLocalizedDescriptionKey(), "NSLocalizedDescription"},
        {NSLocalizedFailureReasonErrorKey(), "NSLocalizedFailureReason"},
        {NSLocalizedRecoverySuggestionErrorKey(), "NSLocalizedRecoverySuggestion"},
        {NSHelpAnchorErrorKey(), "NSHelpAnchor"}})
    EXPECT_EQ(text(key), expected);
}

TEST(NSErrorKBXKeys, CodesAreTheirPublishedNumbers) {
  struct Case {
    ErrorCode code;
    int expected;
  };
  for (auto [code, expected] : {Case{kExceptionError, 5},
                                {kDataNotDecodedError, 500},
                                {kStringNotEncodedError, 501},
                                {kRequirementFailedError, 901},
                                {kUnexpectedClassError, 902},
                                {kUnsupportedKeyError, 1001},
                                {kMethodNotFoundError, 1400},
                                {kClassNotFoundError, 1401},
                                {kMethodNotAddedError, 1402},
                                {kUnexpectedValueError, 2000}})
    EXPECT_EQ(code, expected);
}

}  // namespace
}  // namespace kbx
