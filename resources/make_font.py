"""Makes the font that is embedded: make_font.py SOURCE.otf TARGET.otf

Without contextual alternates, which show other characters than those that were typed ("2x4", "->"), and under
a family name of its own, so that an Inter that is installed never takes its place.
"""
import sys

from fontTools import subset

source, target = sys.argv[1:]
options = subset.Options(name_IDs=["*"], notdef_outline=True)
options.layout_features.remove("calt")
font = subset.load_font(source, options)
subsetter = subset.Subsetter(options)
subsetter.populate(unicodes=font.getBestCmap())
subsetter.subset(font)

postscript_name, names = 6, (1, 3, 4, 16, 21)
for name in font["name"].names:
    if name.nameID in names:
        name.string = name.toUnicode().replace("Inter", "Brisklet Inter")
    elif name.nameID == postscript_name:
        name.string = "Brisklet" + name.toUnicode()
subset.save_font(font, target, options)
