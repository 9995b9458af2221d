// Standard input, output and error of this process, whoever has started it.
#pragma once

namespace Process {

// Makes sure that descriptors 0, 1 and 2 are taken, so that no file or pipe that is opened later
// becomes one of them by accident. Those that were closed fail from then on whenever they are read
// or written. To be called before anything is opened.
void standardDescriptorsAreTaken();

}  // namespace Process
