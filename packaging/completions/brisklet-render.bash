# Completion of brisklet-render for bash.
_brisklet_render() {
  local cur prev words cword
  _init_completion || return

  local word files=0 into='' previous=''
  for word in "${words[@]:1:cword-1}"; do
    case $previous in
      --still | --at | --soundtrack | --into) ;;
      *) [[ $word == -?* ]] || files=$((files + 1)) ;;
    esac
    [[ $word == --into ]] && into=1
    previous=$word
  done

  case $prev in
    --still) _filedir png; return ;;
    --soundtrack) _filedir wav; return ;;
    --into) _filedir -d; return ;;
    --at) COMPREPLY=($(compgen -W end -- "$cur")); return ;;
  esac
  if [[ $cur == -* ]]; then
    COMPREPLY=($(compgen -W '--still --at --soundtrack --into --quiet --verbose --help --version' -- "$cur"))
  elif [[ $into || $files -eq 0 ]]; then
    _filedir json
  else
    _filedir mp4
  fi
} && complete -F _brisklet_render brisklet-render
