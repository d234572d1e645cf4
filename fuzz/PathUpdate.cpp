#include "PathUpdate.h"

#include "Check.h"
#include "FuzzFolder.h"
#include "FuzzPaths.h"
#include "InputBytes.h"

PathUpdate UpdateAnyPaths(Converter& converter, const std::uint8_t* data, std::size_t size) {
    static const FuzzFolder folder;
    const int freeDescriptor = FreeDescriptor();
    InputBytes input(data, size);
    PathUpdate update;
    update.paths = TakePaths(input);
    const WorldTransform t = TakeTransform(input);
    update.original = input.Rest();
    Store("original.trk", update.original);
    Store("target.trk", "old");

    update.result = converter.UpdatePath("original.trk", "target.trk", update.paths, t.widthScale, t.xOffset,
                                         t.yOffset, t.xScale, t.yScale);
    update.target = ContentOf("target.trk");
    Check(update.result == 0 || update.target == "old", "a failure leaves the target unchanged");
    Check(ContentOf("original.trk") == update.original, "the original is left alone");
    Check(TreeOf(".").size() == 2, "no other files are left over");
    Check(FreeDescriptor() <= freeDescriptor, "every file is closed");
    return update;
}
