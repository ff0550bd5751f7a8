#compdef brisklet-render

local -a files=('1:scene:_files -g "*.json(-.)"' '2:movie:_files -g "*.mp4(-.)"')
(( ${words[(I)--into*]} )) && files=('*:scene:_files -g "*.json(-.)"')

_arguments -s -S \
  '--motion[the cards move as on the stage]' \
  '--page=[the phone on a page of this size]:size:(1080x1920 1080x1350 1080x1080 1920x1080)' \
  '(--into)--still=[make one picture of the scene]:picture:_files -g "*.png(-.)"' \
  '(--into)--at=[the moment of the picture]:seconds:(end)' \
  '(--into)--soundtrack=[write the sound as a WAV file]:sound:_files -g "*.wav(-.)"' \
  '(--still --at --soundtrack)--into=[make one movie per scene in this directory]:directory:_files -/' \
  '(--still --at --soundtrack)--jobs=[how many movies at once]:number:' \
  '(--still --at --soundtrack)--keep[leave movies alone that are up to date]' \
  '(-q --quiet --verbose)'{-q,--quiet}'[show no progress]' \
  '(-q --quiet)--verbose[tell every step and its time]' \
  '(- *)'{-h,--help}'[show the usage]' \
  '(- *)--version[show the version]' \
  $files
