-- The chapters link each other as Markdown files; in the packages they are HTML pages.
function Link(link)
  link.target = link.target:gsub("^([%w_-]+)%.md", "%1.html")
  return link
end

-- The pictures of the manual lie beside the pages there.
function Image(image)
  image.src = image.src:gsub("^%.%./pictures/", "pictures/")
  return image
end

-- A page's title is its first heading.
function Pandoc(document)
  if not document.meta.title then
    for _, block in ipairs(document.blocks) do
      if block.t == "Header" then
        document.meta.pagetitle = pandoc.utils.stringify(block)
        break
      end
    end
  end
  return document
end
