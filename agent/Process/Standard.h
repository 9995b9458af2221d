// Standard input, output and error of this process.
#pragma once

namespace Process {

// Makes sure that descriptors 0, 1 and 2 are taken, so that no file or pipe opened later becomes
// one of them by accident. A descriptor that was closed fails from then on at every read and write.
// Call this before anything is opened.
void standardDescriptorsAreTaken();

}  // namespace Process
